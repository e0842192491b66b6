// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/filelock.h"

#include "files/boundedfile.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QSysInfo>
#include <QThread>

namespace {

constexpr qsizetype kAddressLine = 5;

/// The format of QLockFile, so that tools for its files can read this one, without its two last lines, which identify
/// the machine and its start. The line after those is for the address.
QByteArray HolderContent(const QString& address)
{
    const QByteArray line = address.isEmpty() ? QByteArray() : "\n\n" + address.toUtf8() + '\n';
    return QByteArray::number(QCoreApplication::applicationPid()) + '\n' +
           QCoreApplication::applicationName().toUtf8() + '\n' + QSysInfo::machineHostName().toUtf8() + '\n' + line;
}

} // namespace

QString FileLock::Holder::Text() const
{
    if (process == 0)
        return {};
    const QString text = QStringLiteral("process %1 (%2)").arg(QString::number(process), program);
    return machine == QSysInfo::machineHostName() ? text : QStringLiteral("%1 on %2").arg(text, machine);
}

FileLock::Result FileLock::TryLock(const QString& path, QString* error)
{
    const Result result = TryOpen(path, error);
    if (result == Result::Locked || result == Result::Unsupported)
        WriteHolder({});
    return result;
}

void FileLock::WriteHolder(const QString& address) const
{
    Write(HolderContent(address));
}

FileLock::Result FileLock::Lock(const QString& path, std::chrono::milliseconds timeout, QString* error)
{
    constexpr unsigned long kPauseMs = 5; // as long as a save takes
    const QDeadlineTimer deadline(timeout);
    Result result = TryLock(path, error);
    while (result == Result::Busy && !deadline.hasExpired()) {
        QThread::msleep(kPauseMs);
        result = TryLock(path, error);
    }
    return result;
}

FileLock::Holder FileLock::ReadHolder(const QString& path)
{
    constexpr qint64 kMaximumSize = 4096;
    const QList<QByteArray> lines = ReadRegularFile(path, kMaximumSize).value_or(QByteArray()).split('\n');
    bool isNumber = false;
    const qint64 process = lines.constFirst().toLongLong(&isNumber);
    if (!isNumber || process <= 0 || lines.size() < 3)
        return {};
    const QByteArray address = lines.size() > kAddressLine ? lines.at(kAddressLine) : QByteArray();
    return {process, QString::fromUtf8(lines.at(1)), QString::fromUtf8(lines.at(2)), QString::fromUtf8(address)};
}
