#include "files/atomicfile.h"

#include "files/foldersync.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSaveFile>
#include <QTemporaryFile>

#include <filesystem>
#include <system_error>

namespace {

const QString kPrefix = QStringLiteral(".unfinished-");
constexpr int kMaximumLinks = 40;

QFileInfo TargetOf(const QString& file)
{
    QFileInfo info(file);
    for (int i = 0; i < kMaximumLinks && info.isSymbolicLink(); ++i)
        info.setFile(info.symLinkTarget());
    return info;
}

/// What tells the unfinished files of one file from those of its neighbours. Not the name itself: with a name before or
/// behind it, a long one would be too long.
QString Mark(const QFileInfo& target)
{
    constexpr qsizetype kLength = 16;
    const QByteArray hash = QCryptographicHash::hash(target.fileName().toUtf8(), QCryptographicHash::Sha256);
    return QString::fromLatin1(hash.toHex().left(kLength));
}

void Remove(QDir folder, const QString& mark)
{
    // QSaveFile adds a dot and six letters while it writes.
    static const QRegularExpression form(QStringLiteral("^\\.unfinished-[0-9a-f]{16}-[0-9a-f]{16}(\\.[A-Za-z]{6})?$"));
    const QStringList names = folder.entryList({kPrefix + mark + u'*'}, QDir::Files | QDir::Hidden);
    for (const QString& name : names)
        if (form.match(name).hasMatch())
            folder.remove(name);
}

} // namespace

Attempt WriteAtomically(const QString& file, const QByteArray& content, bool* isDurable)
{
    const QFileInfo target = TargetOf(file);
    if (target.exists() && !target.isWritable())
        return Attempt::Failed;

    // QSaveFile has the system bring what it writes to the disk (fsync, FlushFileBuffers) before it gives it a name. On
    // its own it would write under the file's name with six letters added, and somebody's "list.ini.backup" is the
    // same.
    const QString folder = target.absolutePath();
    const QString unfinished =
        folder + u'/' + kPrefix +
        QStringLiteral("%1-%2").arg(Mark(target)).arg(QRandomGenerator::global()->generate64(), 16, 16, QChar(u'0'));
    QSaveFile saving(unfinished);
    // What fails before there is a name, such as a full disk, does not pass by waiting.
    if (!saving.open(QIODevice::WriteOnly) || saving.write(content) != content.size() || !saving.flush())
        return Attempt::Failed;
    if (target.exists())
        saving.setPermissions(target.permissions());
    if (!saving.commit())
        return Attempt::Busy;

    std::error_code error;
    std::filesystem::rename(QFileInfo(unfinished).filesystemFilePath(), target.filesystemFilePath(), error);
    if (error) {
        QFile::remove(unfinished);
        return Attempt::Busy;
    }
    const bool isSynced = SyncFolder(folder);
    if (isDurable)
        *isDurable = isSynced;
    return Attempt::Done;
}

QString ReplaceRegularFile(const QString& file, const QByteArray& content)
{
    const QFileInfo former(file);
    if (former.exists() && !former.isFile())
        return QStringLiteral("not a regular file");
    Attempt last = Attempt::Done;
    if (Retry([&] { return last = WriteAtomically(file, content); }))
        return {};
    if (former.exists() && !former.isWritable())
        return QStringLiteral("it is write-protected");
    if (const QString obstacle = CreationObstacle(TargetOf(file).absolutePath()); !obstacle.isEmpty())
        return obstacle;
    return last == Attempt::Busy ? QStringLiteral("it cannot take its place; another program may hold it")
                                 : QStringLiteral("no room");
}

QString CreationObstacle(const QString& folder, const QByteArray& content)
{
    QTemporaryFile probe(folder + QStringLiteral("/.probe-XXXXXX"));
    const bool isCreated = probe.open() && probe.write(content) == content.size() && probe.flush();
    return isCreated ? QString() : probe.errorString();
}

bool CreateFolder(const QString& folder)
{
    const QFileInfo info(folder);
    if (info.isDir())
        return true;
    const QString path = info.absoluteFilePath();
    const QString parent = info.absolutePath();
    // Neither a drive, which is its own parent, nor another machine can be made. The name of the latter would be taken
    // for that of a folder on this one, and there would be no end of parents of one called ".", where devices are.
    const bool isMachine = path.startsWith(QLatin1String("//")) && path.lastIndexOf(u'/', -2) < 2;
    if (isMachine || parent.size() >= path.size())
        return false;
    // Another process may make it at the same moment.
    if (!CreateFolder(parent) || (!QDir(parent).mkdir(info.fileName()) && !QFileInfo(folder).isDir()))
        return false;
    SyncFolder(parent); // a document in it says so when that does not work
    return true;
}

void RemoveTemporaryFiles(const QString& file)
{
    const QFileInfo target = TargetOf(file);
    Remove(target.absoluteDir(), Mark(target) + u'-');
}

void RemoveAllTemporaryFiles(const QString& folder)
{
    Remove(QDir(folder), {});
}
