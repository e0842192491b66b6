// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QFile>
#include <QString>
#include <QTimer>

#include <algorithm>

#include <unistd.h>

/// Measures for how long this thread's event loop does not get to work.
class Stalls
{
public:
    Stalls()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.callOnTimeout([this] { longest = std::max(longest, m_since.restart()); });
        m_since.start();
        m_timer.start(5);
    }

    qint64 longest = 0; // ms

private:
    QTimer m_timer;
    QElapsedTimer m_since;
};

/// The resident memory of a process, by its number.
inline double ResidentMiB(const QString& process = QStringLiteral("self"))
{
    QFile file(QStringLiteral("/proc/%1/statm").arg(process));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("The memory cannot be measured");
    return file.readAll().split(' ').value(1).toDouble() * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1024 / 1024;
}
