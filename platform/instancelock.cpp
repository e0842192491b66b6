// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/instancelock.h"

#include "files/atomicfile.h"
#include "files/filelock.h"

#include <QDir>
#include <QFileInfo>
#include <QSysInfo>

#include <chrono>

using namespace std::chrono_literals;

namespace {

// On some systems a query holds the lock for a moment, and a host that ends may need a moment to release it.
constexpr auto kTimeout = 500ms;

QString LockFilePath(const QString& directory)
{
    return directory + QStringLiteral("/vexelhost.lock");
}

QString BusyMessage(const QString& file, const QString& directory)
{
    const FileLock::Holder holder = FileLock::ReadHolder(file);
    const QString native = QDir::toNativeSeparators(directory);
    if (holder.process == 0) {
        return QStringLiteral("another host uses the configuration directory %1; kitestarter brings its dialog, if "
                              "it has one, to the front")
            .arg(native);
    }
    if (!holder.machine.isEmpty() && holder.machine != QSysInfo::machineHostName()) {
        // A file server may keep the lock of a machine that is gone, which only the user can know.
        return QStringLiteral("another host, process %1 on %2, uses the configuration directory %3; if it does not "
                              "run any more, remove %4")
            .arg(holder.process)
            .arg(holder.machine, native, QDir::toNativeSeparators(file));
    }
    return QStringLiteral("another host, process %1, uses the configuration directory %2; kitestarter brings its "
                          "dialog, if it has one, to the front")
        .arg(holder.process)
        .arg(native);
}

} // namespace

InstanceLock::InstanceLock() = default;

InstanceLock::~InstanceLock() = default;

InstanceLock::Result InstanceLock::TryLock(const QString& directory)
{
    const QString native = QDir::toNativeSeparators(directory);
    m_errorText = QStringLiteral("the configuration directory %1 cannot be used").arg(directory);
    if (directory.isEmpty() || !CreateFolder(directory)) {
        if (QFileInfo(directory).isSymbolicLink())
            m_errorText += QStringLiteral(": it is a link that leads nowhere");
        return Result::Unusable;
    }

    const QString file = LockFilePath(directory);
    QString error;
    m_file = std::make_unique<FileLock>();
    switch (m_file->Lock(file, kTimeout, &error)) {
    case FileLock::Result::Unsupported:
        m_warning = QStringLiteral("the file system of the configuration directory %1 has no locks: take care that no "
                                   "second host works there")
                        .arg(native);
        break;
    case FileLock::Result::Locked:
        break;
    case FileLock::Result::Busy:
        m_errorText = BusyMessage(file, directory);
        return Result::Busy;
    case FileLock::Result::Failed:
        m_errorText += QStringLiteral(": its lock %1 cannot be taken: %2").arg(QDir::toNativeSeparators(file), error);
        return Result::Unusable;
    }
    m_errorText.clear();
    return Result::Locked;
}

void InstanceLock::SetAddress(const QString& address) const
{
    m_file->WriteHolder(address);
}

InstanceLock::Owner InstanceLock::Query(const QString& directory)
{
    const QString file = LockFilePath(directory);
    Owner owner;
    switch (FileLock::Query(file)) {
    case FileLock::State::Free:
        break;
    case FileLock::State::Locked: {
        const FileLock::Holder holder = FileLock::ReadHolder(file);
        return {State::Somebody, holder.process, holder.program, holder.address};
    }
    case FileLock::State::Unknown:
        owner.state = State::Unknown;
        break;
    }
    return owner;
}
