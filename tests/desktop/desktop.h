// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QCursor>
#include <QPoint>
#include <QProcess>
#include <QStringList>
#include <QTest>

/// Mouse and keyboard input from outside the program.
class Desktop
{
public:
    /// Runs xdotool while this program processes events. Returns its output; fails the test when it does not end.
    static QString Do(const QStringList& arguments)
    {
        QProcess tool;
        tool.start(QStringLiteral("xdotool"), arguments);
        [&] {
            QTRY_COMPARE_WITH_TIMEOUT(tool.state(), QProcess::NotRunning, 20000);
        }();
        return QString::fromUtf8(tool.readAllStandardOutput()).trimmed();
    }

    static void MoveTo(const QPoint& at)
    {
        // Not with --sync, which waits 15 s when the pointer is there already.
        Do({QStringLiteral("mousemove"), QString::number(at.x()), QString::number(at.y())});
        QTRY_COMPARE(QCursor::pos(), at);
    }

    static void Click(const QPoint& at, int times = 1)
    {
        MoveTo(at);
        Do({QStringLiteral("click"), QStringLiteral("--repeat"), QString::number(times), QStringLiteral("--delay"),
            QStringLiteral("40"), QStringLiteral("1")});
    }

    static void Press(const QString& keys) { Do({QStringLiteral("key"), keys}); }
    static void Type(const QString& text) { Do({QStringLiteral("type"), text}); }
};
