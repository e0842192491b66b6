// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/desktop/desktop.h"
#include "tests/desktop/panel.h"
#include "tests/support/files.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>

/// The host with its window on a desktop.
class TestDesktopHost : public QObject
{
    Q_OBJECT

private slots:
    void placeOutlivesTheRun();
    void staysInTheTrayUntilQuit();

private:
    static QString FindWindow()
    {
        return Desktop::Do({QStringLiteral("search"), QStringLiteral("--onlyvisible"), QStringLiteral("--name"),
                            QStringLiteral("^Vexel - Connect Dialog$")})
            .section(QLatin1Char('\n'), 0, 0);
    }
    /// Whether the panel holds a window of the host.
    static bool HasIcon()
    {
        // Deeper in the tree of windows than the other tool looks.
        QProcess tool;
        tool.start(QStringLiteral("xwininfo"), {QStringLiteral("-root"), QStringLiteral("-tree")});
        tool.waitForFinished();
        static const QRegularExpression kIcon(
            QStringLiteral("\"vexelhost\": \\(\"vexelhost\"[^\\n]*\\+(\\d+)\\+(\\d+)\\n"));
        auto matches = kIcon.globalMatch(QString::fromUtf8(tool.readAllStandardOutput()));
        while (matches.hasNext()) {
            const auto match = matches.next();
            if (Panel::Place().contains(QPoint(match.captured(1).toInt(), match.captured(2).toInt())))
                return true;
        }
        return false;
    }
    /// Whether a window has an icon for its title and the task bar.
    static bool HasPicture(const QString& window)
    {
        QProcess tool;
        tool.start(QStringLiteral("xprop"), {QStringLiteral("-id"), window, QStringLiteral("-notype"),
                                             QStringLiteral("32c"), QStringLiteral("_NET_WM_ICON")});
        return tool.waitForFinished() && tool.readAllStandardOutput().contains("_NET_WM_ICON = ");
    }

    /// Where the content of a window is.
    static QRect PlaceOf(const QString& window)
    {
        QProcess tool;
        tool.start(QStringLiteral("xwininfo"), {QStringLiteral("-id"), window});
        tool.waitForFinished();
        const QString text = QString::fromUtf8(tool.readAllStandardOutput());
        const auto number = [&text](const char* key) {
            const QRegularExpression line(QLatin1String(key) + QStringLiteral(": +(-?\\d+)"));
            return line.match(text).captured(1).toInt();
        };
        return {number("Absolute upper-left X"), number("Absolute upper-left Y"), number("Width"), number("Height")};
    }
};

void TestDesktopHost::placeOutlivesTheRun()
{
    const QTemporaryDir directory;
    const QStringList arguments{QStringLiteral("--config"), directory.filePath(QStringLiteral("config")),
                                QStringLiteral("--data"), directory.path()};
    QVERIFY(Files::Write(directory.filePath(QStringLiteral("CfgVEXEL.xml")), "<CfgVEXEL/>"));
    const QRect wanted(321, 456, 777, 333);
    for (int run = 0; run < 3; ++run) {
        QProcess host;
        host.setProcessChannelMode(QProcess::ForwardedChannels);
        host.start(QStringLiteral(VEXEL_HOST), arguments);
        QString window;
        QTRY_VERIFY_WITH_TIMEOUT(!(window = FindWindow()).isEmpty(), 20000);
        QVERIFY(HasPicture(window));
        if (run == 0) {
            QVERIFY(PlaceOf(window).size() != wanted.size());
            Desktop::Do({QStringLiteral("windowsize"), QStringLiteral("--sync"), window,
                         QString::number(wanted.width()), QString::number(wanted.height())});
            Desktop::Do(
                {QStringLiteral("windowmove"), window, QString::number(wanted.x()), QString::number(wanted.y())});
        }
        QTRY_COMPARE(PlaceOf(window), wanted);
        host.terminate();
        QVERIFY(host.waitForFinished());
        QCOMPARE(host.exitStatus(), QProcess::NormalExit);
        QCOMPARE(host.exitCode(), 0);
    }
}

void TestDesktopHost::staysInTheTrayUntilQuit()
{
    const Panel panel;
    const QTemporaryDir directory;
    QVERIFY(Files::Write(directory.filePath(QStringLiteral("CfgVEXEL.xml")), "<CfgVEXEL/>"));
    QProcess host;
    host.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    host.start(QStringLiteral(VEXEL_HOST), {QStringLiteral("--config"), directory.filePath(QStringLiteral("config")),
                                            QStringLiteral("--data"), directory.path()});
    QString window;
    QTRY_VERIFY_WITH_TIMEOUT(!(window = FindWindow()).isEmpty(), 20000);
    QTRY_VERIFY_WITH_TIMEOUT(HasIcon(), 20000);

    // On a busy machine keys that come before the window has the keyboard are lost, and a person presses them again.
    Desktop::Do({QStringLiteral("windowactivate"), QStringLiteral("--sync"), window});
    QTRY_VERIFY_WITH_TIMEOUT((Desktop::Press(QStringLiteral("alt+F4")), FindWindow().isEmpty()), 20000);
    // Closing has saved, and ended nothing.
    QTRY_VERIFY(!QDir(directory.filePath(QStringLiteral("config/user"))).isEmpty());
    QVERIFY(HasIcon());
    QCOMPARE(host.state(), QProcess::Running);

    Desktop::Click(Panel::Place().center());
    QTRY_VERIFY_WITH_TIMEOUT(!FindWindow().isEmpty(), 20000);

    // The last item of the menu.
    Desktop::Do({QStringLiteral("click"), QStringLiteral("3")});
    Desktop::Press(QStringLiteral("Up"));
    Desktop::Press(QStringLiteral("Return"));
    QTRY_COMPARE_WITH_TIMEOUT(host.state(), QProcess::NotRunning, 20000);
    QCOMPARE(host.exitStatus(), QProcess::NormalExit);
    QCOMPARE(host.exitCode(), 0);
}

VEXEL_TEST(QTEST_MAIN, TestDesktopHost)
#include "tst_desktophost.moc"
