// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/system/system.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace System {

bool IsProcess(qint64 number)
{
    return ::kill(static_cast<pid_t>(number), 0) == 0;
}

bool Suspend(qint64 number)
{
    return ::kill(static_cast<pid_t>(number), SIGSTOP) == 0;
}

bool Resume(qint64 number)
{
    return ::kill(static_cast<pid_t>(number), SIGCONT) == 0;
}

QString ProgramOf(qint64 number)
{
    return QFile::symLinkTarget(QStringLiteral("/proc/%1/exe").arg(number));
}

QStringList RequestsToEnd()
{
    return {QStringLiteral("TERM"), QStringLiteral("INT"), QStringLiteral("HUP")};
}

bool AskToEnd(qint64 number, const QString& request)
{
    constexpr std::array kSignals = {SIGTERM, SIGINT, SIGHUP};
    const auto index = static_cast<std::size_t>(RequestsToEnd().indexOf(request));
    return ::kill(static_cast<pid_t>(number), kSignals.at(index)) == 0;
}

bool Crash(qint64 number)
{
    return ::kill(static_cast<pid_t>(number), SIGKILL) == 0;
}

void EndWhenAsked()
{
    std::signal(
        SIGTERM, [](int) { ::_exit(0); });
}

void GoOnWhenAsked()
{
    std::signal(SIGTERM, SIG_IGN);
}

QStringList Devices()
{
    return {QStringLiteral("/dev/null"), QStringLiteral("/dev/zero")};
}

QString MakePipe(const QString& file)
{
    return ::mkfifo(QFile::encodeName(file).constData(), S_IRUSR | S_IWUSR) == 0 ? file : QString();
}

qsizetype OpenHandles()
{
    return QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::System).size();
}

QString StreamTarget(int stream)
{
    const QString target = QFileInfo(QStringLiteral("/proc/self/fd/%1").arg(stream)).symLinkTarget();
    if (target == QLatin1String("/dev/null"))
        return QStringLiteral("nothing");
    return target.contains(QLatin1String("pipe:")) ? QStringLiteral("pipe") : target;
}

bool HasConsole()
{
    const int terminal = ::open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (terminal < 0)
        return false;
    ::close(terminal);
    return true;
}

bool TakeDisplay(QProcessEnvironment& environment)
{
    for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
        environment.remove(QString::fromLatin1(name));
    return true;
}

bool IsWine()
{
    return false;
}

qint64 ResidentKiB()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    const qint64 pages = file.open(QIODevice::ReadOnly) ? file.readAll().split(' ').at(1).toLongLong() : 0;
    return pages * ::sysconf(_SC_PAGESIZE) / 1024;
}

} // namespace System
