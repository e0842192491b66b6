#include "platform/instancelock.h"

#include "files/atomicfile.h"
#include "files/boundedfile.h"
#include "files/filelock.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QSysInfo>
#include <QThread>

#include <chrono>

using namespace std::chrono_literals;

namespace {

// On some systems whoever just looks is in the way for a moment, and a host that ends may need one.
constexpr auto kTimeout = 500ms;
constexpr auto kPause = 20ms;

/// What the file says of who holds it. A host that was killed leaves it, so it is to be asked of a held one only.
struct Name
{
    qint64 process = 0; // 0: unreadable
    QString machine;
};

QString FileIn(const QString& directory)
{
    return directory + QStringLiteral("/vexelhost.lock");
}

// As the toolkit's own lock files are written, so that tools for those read it.
QByteArray OwnName()
{
    return QByteArray::number(QCoreApplication::applicationPid()) + "\nvexelhost\n" +
           QSysInfo::machineHostName().toUtf8() + '\n';
}

Name ReadName(const QString& fileName)
{
    constexpr qint64 kLongest = 4096;
    const QList<QByteArray> lines = ReadRegularFile(fileName, kLongest).value_or(QByteArray()).split('\n');
    bool isNumber = false;
    const qint64 process = lines.constFirst().toLongLong(&isNumber);
    if (!isNumber || process <= 0 || lines.size() < 3)
        return {};
    return {process, QString::fromUtf8(lines.at(2))};
}

QString HeldText(const QString& file, const QString& directory)
{
    const Name name = ReadName(file);
    const QString native = QDir::toNativeSeparators(directory);
    if (name.process == 0) {
        return QStringLiteral("another host works on the configuration directory %1; kitestarter brings its dialog, "
                              "where it has one, to the front")
            .arg(native);
    }
    if (!name.machine.isEmpty() && name.machine != QSysInfo::machineHostName()) {
        // A file server may hold a lock for a machine that is gone, and then only a person can tell.
        return QStringLiteral("another host, process %1 on %2, works on the configuration directory %3; if it does not "
                              "run any more, remove %4")
            .arg(name.process)
            .arg(name.machine, native, QDir::toNativeSeparators(file));
    }
    return QStringLiteral("another host, process %1, works on the configuration directory %2; kitestarter brings its "
                          "dialog, where it has one, to the front")
        .arg(name.process)
        .arg(native);
}

} // namespace

InstanceLock::InstanceLock() = default;

InstanceLock::~InstanceLock() = default;

InstanceLock::Result InstanceLock::TryLock(const QString& directory)
{
    const QString native = QDir::toNativeSeparators(directory);
    m_errorText = QStringLiteral("the configuration directory %1 cannot be used").arg(directory);
    if (directory.isEmpty() || !CreateFolder(directory))
        return Result::Unusable;

    const QString file = FileIn(directory);
    QString error;
    const QDeadlineTimer deadline(kTimeout);
    m_file = std::make_unique<FileLock>();
    FileLock::Result result = m_file->TryLock(file, &error);
    while (result == FileLock::Result::Busy && !deadline.hasExpired()) {
        QThread::msleep(static_cast<unsigned long>(kPause.count()));
        result = m_file->TryLock(file, &error);
    }
    switch (result) {
    case FileLock::Result::Unsupported:
        m_warning = QStringLiteral("the file system of the configuration directory %1 has no locks: take care that no "
                                   "second host works there")
                        .arg(native);
        break;
    case FileLock::Result::Locked:
        break;
    case FileLock::Result::Busy:
        m_errorText = HeldText(file, directory);
        m_file.reset();
        return Result::Busy;
    case FileLock::Result::Failed:
        m_errorText += QStringLiteral(": ") + error;
        m_file.reset();
        return Result::Unusable;
    }
    m_file->Write(OwnName());
    m_errorText.clear();
    return Result::Locked;
}

InstanceLock::Owner InstanceLock::Query(const QString& directory)
{
    const QString file = FileIn(directory);
    switch (FileLock::Query(file)) {
    case FileLock::State::Free:
        break;
    case FileLock::State::Locked:
        return {State::Somebody, ReadName(file).process};
    case FileLock::State::Unknown:
        return {State::Unknown, 0};
    }
    return {};
}
