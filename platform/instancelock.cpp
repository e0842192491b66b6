#include "platform/instancelock.h"

#include "platform/blockedplace.h"
#include "platform/heldfile.h"
#include "platform/wholefile.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QSysInfo>
#include <QThread>

#include <chrono>

using namespace std::chrono_literals;

namespace {

// On some systems whoever just looks is in the way for a moment, and a host that ends may need one.
constexpr auto s_patience = 500ms;
constexpr auto s_pause = 20ms;

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
    constexpr qint64 longest = 4096;
    QFile file(fileName);
    if (IsBlocked(fileName) || !file.open(QIODevice::ReadOnly))
        return {};
    const QList<QByteArray> lines = file.read(longest).split('\n');
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

InstanceLock::Result InstanceLock::Take(const QString& directory)
{
    const QString native = QDir::toNativeSeparators(directory);
    m_ErrorText = QStringLiteral("the configuration directory %1 cannot be used").arg(directory);
    if (directory.isEmpty() || !MakeFolder(directory))
        return Result::Unusable;

    const QString file = FileIn(directory);
    QString error;
    const QDeadlineTimer patience(s_patience);
    m_File = std::make_unique<HeldFile>();
    HeldFile::Result result = m_File->Take(file, &error);
    while (result == HeldFile::Result::Held && !patience.hasExpired()) {
        QThread::msleep(static_cast<unsigned long>(s_pause.count()));
        result = m_File->Take(file, &error);
    }
    switch (result) {
    case HeldFile::Result::NoLock:
        m_Warning = QStringLiteral("the file system of the configuration directory %1 has no locks: take care that no "
                                   "second host works there")
                        .arg(native);
        break;
    case HeldFile::Result::Taken:
        break;
    case HeldFile::Result::Held:
        m_ErrorText = HeldText(file, directory);
        m_File.reset();
        return Result::Held;
    case HeldFile::Result::Failed:
        m_ErrorText += QStringLiteral(": ") + error;
        m_File.reset();
        return Result::Unusable;
    }
    m_File->Write(OwnName());
    m_ErrorText.clear();
    return Result::Taken;
}

InstanceLock::Owner InstanceLock::Look(const QString& directory)
{
    const QString file = FileIn(directory);
    switch (HeldFile::Look(file)) {
    case HeldFile::State::Free:
        break;
    case HeldFile::State::Held:
        return {State::Somebody, ReadName(file).process};
    case HeldFile::State::Unknown:
        return {State::Unknown, 0};
    }
    return {};
}
