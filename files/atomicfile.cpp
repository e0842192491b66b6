// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/atomicfile.h"

#include "files/foldersync.h"
#include "files/privatefile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSaveFile>
#include <QScopeGuard>
#include <QTemporaryFile>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>

namespace {

const QString kPrefix = QStringLiteral(".unfinished-");
constexpr int kMaxLinks = 40;

QFileInfo ResolveLinks(const QString& file)
{
    QFileInfo info(file);
    for (int i = 0; i < kMaxLinks && info.isSymbolicLink(); ++i)
        info.setFile(info.symLinkTarget());
    return info;
}

/// Returns a hash that identifies the temporary files of `target`. The name itself could become too long with a prefix.
QString NameHash(const QFileInfo& target)
{
    constexpr qsizetype kLength = 16;
    const QByteArray hash = QCryptographicHash::hash(target.fileName().toUtf8(), QCryptographicHash::Sha256);
    return QString::fromLatin1(hash.toHex().left(kLength));
}

void RemoveMatching(QDir folder, const QString& mark)
{
    // QSaveFile adds a dot and six letters while it writes.
    static const QRegularExpression form(QStringLiteral("^\\.unfinished-[0-9a-f]{16}-[0-9a-f]{16}(\\.[A-Za-z]{6})?$"));
    const QStringList names = folder.entryList({kPrefix + mark + u'*'}, QDir::Files | QDir::Hidden);
    for (const QString& name : names)
        if (form.match(name).hasMatch())
            folder.remove(name);
}

/// Writes `data` at `offset`. Returns the number of bytes written; if that is not all, the file has an error text.
qint64 WriteAt(QFile& file, qint64 offset, const QByteArray& data)
{
    qint64 written = 0;
    if (!file.seek(offset))
        return written;
    while (written < data.size()) {
        const qint64 count = file.write(data.constData() + written, data.size() - written);
        if (count <= 0)
            break;
        written += count;
    }
    return written;
}

/// Overwrites an existing file in place. Returns why that failed; none if the file cannot be opened. If the disk is
/// full or a write fails, the former content is put back. If this process ends half-way, it is lost.
std::optional<QString> WriteInPlace(const QString& name, const QByteArray& content)
{
    QFile file(name);
    if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly | QIODevice::Unbuffered))
        return std::nullopt;
    const qint64 formerSize = file.size();
    const QByteArray former = file.read(std::min<qint64>(formerSize, content.size()));
    if (former.size() != std::min<qint64>(formerSize, content.size()))
        return file.errorString();

    // What exceeds the former size comes first: only that needs room, and the former content is still there.
    const QByteArray excess = content.mid(former.size());
    QString error;
    if (WriteAt(file, former.size(), excess) != excess.size()) {
        error = file.errorString();
        return file.resize(formerSize) ? error : QStringLiteral("%1; it has grown").arg(error);
    }
    const qint64 written = WriteAt(file, 0, content.left(former.size()));
    if (written == former.size() && file.resize(content.size()))
        return QString();
    error = file.errorString();
    const bool isRestored = WriteAt(file, 0, former.left(written)) == written && file.resize(formerSize);
    return isRestored ? error : QStringLiteral("%1; its former content is lost").arg(error);
}

} // namespace

Attempt WriteAtomically(const QString& file, const QByteArray& content, FileAccess access, bool* isDurable)
{
    const QFileInfo target = ResolveLinks(file);
    if (target.exists() && !target.isWritable())
        return Attempt::Failed;

    // QSaveFile flushes the data to the disk (fsync, FlushFileBuffers) before it renames. Used directly, its temporary
    // name would be the file's name plus six letters, and a user's "list.json.backup" has the same form.
    const QString folder = target.absolutePath();
    const QString temporaryName = folder + u'/' + kPrefix +
                                  QStringLiteral("%1-%2")
                                      .arg(NameHash(target))
                                      .arg(QRandomGenerator::global()->generate64(), 16, 16, QChar(u'0'));
    // QSaveFile takes over the permissions of the file that it replaces.
    if (access == FileAccess::Private && !CreatePrivateFile(temporaryName))
        return Attempt::Failed;
    auto removeTemporaryFile = qScopeGuard([&temporaryName] { QFile::remove(temporaryName); });
    QSaveFile saveFile(temporaryName);
    // A failure before the rename, such as a full disk, is not temporary.
    if (!saveFile.open(QIODevice::WriteOnly) || saveFile.write(content) != content.size() || !saveFile.flush())
        return Attempt::Failed;
    if (target.exists())
        saveFile.setPermissions(target.permissions());
    if (!saveFile.commit())
        return Attempt::Busy;

    std::error_code error;
    std::filesystem::rename(QFileInfo(temporaryName).filesystemFilePath(), target.filesystemFilePath(), error);
    if (error)
        return Attempt::Busy;
    removeTemporaryFile.dismiss();
    const bool isSynced = SyncFolder(folder);
    if (isDurable)
        *isDurable = isSynced;
    return Attempt::Done;
}

QString WriteWithRetries(const QString& file, const QByteArray& content, FileAccess access, bool* isDurable)
{
    Attempt last = Attempt::Done;
    if (Retry([&] { return last = WriteAtomically(file, content, access, isDurable); }))
        return {};
    const QFileInfo target = ResolveLinks(file);
    if (target.exists() && !target.isWritable())
        return QStringLiteral("it is write-protected");
    if (const QString obstacle = CreationObstacle(target.absolutePath(), content); !obstacle.isEmpty())
        return obstacle;
    return last == Attempt::Busy ? QStringLiteral("it cannot be replaced; another program may have it open")
                                 : QStringLiteral("it could not be written a moment ago");
}

QString ReplaceRegularFile(const QString& file, const QByteArray& content, FileAccess access)
{
    const QFileInfo former(file);
    if (former.exists() && !former.isFile())
        return QStringLiteral("not a regular file");
    const QString error = WriteWithRetries(file, content, access);
    const QFileInfo target = ResolveLinks(file);
    if (error.isEmpty() || !target.isWritable()) // also if it does not exist
        return error;
    // Its folder may allow neither a new file nor the replacement of this one. But where there is no room, writing in
    // place could lose the file.
    const QString folder = target.absolutePath();
    if (CreationObstacle(folder).isEmpty() && !CreationObstacle(folder, content).isEmpty())
        return error;
    return WriteInPlace(file, content).value_or(error);
}

QString CreationObstacle(const QString& folder, const QByteArray& content)
{
    QTemporaryFile probe(folder + QStringLiteral("/.probe-XXXXXX"));
    if (probe.open() && probe.write(content) == content.size() && probe.flush())
        return {};
    // A write that stopped half-way sets no error, but the next one does.
    if (probe.isOpen() && probe.putChar(' '))
        probe.flush();
    return probe.errorString();
}

bool CreateFolder(const QString& folder)
{
    const QFileInfo info(folder);
    if (info.isDir())
        return true;
    const QString path = info.absoluteFilePath();
    const QString parent = info.absolutePath();
    // A drive, which is its own parent, and another machine cannot be created. mkdir() would create the machine's name
    // as a local folder, and the parents of "//./", the device namespace, never end.
    const bool isMachine = path.startsWith(QLatin1String("//")) && path.lastIndexOf(u'/', -2) < 2;
    if (isMachine || parent.size() >= path.size())
        return false;
    // Another process may create it at the same time.
    if (!CreateFolder(parent) || (!CreatePrivateFolder(path) && !QFileInfo(folder).isDir()))
        return false;
    SyncFolder(parent); // the document in it reports a failure as not durable
    return true;
}

void RemoveTemporaryFiles(const QString& file)
{
    const QFileInfo target = ResolveLinks(file);
    RemoveMatching(target.absoluteDir(), NameHash(target) + u'-');
}

void RemoveAllTemporaryFiles(const QString& folder)
{
    RemoveMatching(QDir(folder), {});
}
