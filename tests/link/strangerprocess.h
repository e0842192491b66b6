// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "tests/support/waitforend.h"

#include <QByteArray>
#include <QDir>
#include <QProcess>
#include <QString>
#include <QTest>

/// Another process that has called a port, `calls` times at once, and has sent half a line each time.
class Stranger
{
public:
    Stranger(quint16 port, int calls)
    {
        // With its drive, so that it is found from everywhere.
        process.start(QDir().absoluteFilePath(QStringLiteral(VEXEL_STRANGER)),
                      {QString::number(port), QString::number(calls)});
        QTRY_VERIFY(process.canReadLine());
        QCOMPARE(process.readLine().trimmed(), QByteArray("there"));
    }
    ~Stranger()
    {
        process.kill();
        WaitForEnd(process);
    }
    Q_DISABLE_COPY_MOVE(Stranger)

    static QByteArray Said() { return QByteArrayLiteral("half a li"); }

    QProcess process;
};
