// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QGuiApplication>
#include <QProcess>
#include <QRect>
#include <QScreen>
#include <QSystemTrayIcon>
#include <QTest>

/// A panel with a system tray. It can be stopped and started again.
class Panel
{
public:
    Panel() { Start(); }
    ~Panel() { Stop(); }

    /// Its place on the screen while it holds one icon.
    static QRect Place()
    {
        const QRect screen = QGuiApplication::primaryScreen()->geometry();
        return {screen.bottomRight() - QPoint(24, 24), screen.bottomRight()};
    }

    void Start()
    {
        m_process.setProcessChannelMode(QProcess::ForwardedChannels);
        m_process.start(QStringLiteral("trayer"),
                        {QStringLiteral("--edge"), QStringLiteral("bottom"), QStringLiteral("--align"),
                         QStringLiteral("right"), QStringLiteral("--widthtype"), QStringLiteral("request"),
                         QStringLiteral("--height"), QStringLiteral("24")});
        QVERIFY2(m_process.waitForStarted(), qPrintable(m_process.errorString()));
        QTRY_VERIFY_WITH_TIMEOUT(QSystemTrayIcon::isSystemTrayAvailable(), 20000);
    }
    void Stop()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

private:
    QProcess m_process;
};
