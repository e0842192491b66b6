// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/launcher/startwaits_unix.h"

#include <QProcess>

#include <dlfcn.h>

namespace {

QList<int> g_limits;

} // namespace

// The linker finds this before the function of Qt's library.
bool QProcess::waitForStarted(int msecs)
{
    g_limits.append(msecs);
    using Function = bool (*)(QProcess*, int);
    static const auto original = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "_ZN8QProcess14waitForStartedEi"));
    return original(this, msecs);
}

namespace StartWaits {

const QList<int>& All()
{
    return g_limits;
}

void Forget()
{
    g_limits.clear();
}

} // namespace StartWaits
