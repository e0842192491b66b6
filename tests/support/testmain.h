// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

/// What a test executable can run. Its main() is in testmain.cpp; the first argument names the test.
namespace TestMain {

using Main = int (*)(int argc, char** argv);

/// Adds a test under the name of its source file, without folder and suffix. `main` is called without that name.
struct Test
{
    Test(const char* file, Main main);
};

/// Adds a program that a test starts as a second process. `main` gets all arguments, with `name` as the first.
struct Program
{
    Program(const char* name, Main main);
};

} // namespace TestMain

/// Adds a test class: `VEXEL_TEST(QTEST_MAIN, TestSomething)`. The macro of Qt decides on the application object.
#define VEXEL_TEST(QtMain, TestClass)                                                                                  \
    namespace Main##TestClass                                                                                          \
    {                                                                                                                  \
        static QtMain(TestClass) const TestMain::Test kTest(__FILE__, main);                                           \
    }
