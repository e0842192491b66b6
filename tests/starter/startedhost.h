// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "starter/hostprocess.h"
#include "tests/starter/fakehostrun.h"

/// Starts a fake host and waits until it has said how.
inline QJsonObject Started(HostProcess& process, const FakeHostRun& run, const QStringList& arguments,
                           const QString& errorFile = {})
{
    const QString error = process.Start(FakeHostRun::Program(), arguments, errorFile);
    if (!error.isEmpty())
        qFatal("%s", qPrintable(error));
    if (!QTest::qWaitFor([&] { return run.Starts().size() == 1; }, 20'000))
        qFatal("It says nothing");
    return run.Starts().constFirst();
}
