// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/testmain.h"

#include <cstdio>
#include <functional>
#include <map>
#include <string>

namespace {

using Mains = std::map<std::string, std::function<int(int, char**)>, std::less<>>;

Mains& AllMains()
{
    static Mains mains;
    return mains;
}

} // namespace

TestMain::Test::Test(const char* file, Main main)
{
    std::string name(file);
    name.erase(0, name.find_last_of('/') + 1);
    name.erase(name.find_last_of('.'));
    AllMains()[name] = [main](int argc, char** argv) {
        argv[1] = argv[0];
        return main(argc - 1, argv + 1);
    };
}

TestMain::Program::Program(const char* name, Main main)
{
    AllMains()[name] = main;
}

int main(int argc, char** argv)
{
    const auto named = argc > 1 ? AllMains().find(argv[1]) : AllMains().end();
    if (named != AllMains().end())
        return named->second(argc, argv);
    (void)std::fputs("The first argument must be one of these; those behind it are for the test:\n", stderr);
    for (const auto& [name, run] : AllMains())
        (void)std::fprintf(stderr, "    %s\n", name.c_str());
    return 2;
}
