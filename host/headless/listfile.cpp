#include "host/headless/listfile.h"

#include "files/atomicfile.h"
#include "files/retry.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

namespace {

constexpr qint64 kMebibyte = 1 << 20;
constexpr qint64 kLargestFile = 64 * kMebibyte;

/// Returns why `file` could not be written, for the user. If the file system does not show it, `last` decides.
QString ObstacleTo(const QFileInfo& file, Attempt last)
{
    if (file.exists() && !file.isWritable())
        return QStringLiteral("it is write-protected");
    QTemporaryFile probe(QFileInfo(file.exists() ? file.canonicalFilePath() : file.filePath()).absolutePath() +
                         QStringLiteral("/.probe-XXXXXX"));
    if (!probe.open())
        return probe.errorString();
    return last == Attempt::Busy ? QStringLiteral("it cannot be replaced; another program may have it open")
                                 : QStringLiteral("no room");
}

} // namespace

ListFile ReadListFile(const QString& fileName)
{
    const auto refused = [&fileName](const QString& reason) {
        return ListFile{{}, QStringLiteral("cannot read %1: %2").arg(fileName, reason)};
    };

    const QFileInfo info(fileName);
    if (!info.exists())
        return refused(QStringLiteral("no such file"));
    if (!info.isFile())
        return refused(QStringLiteral("not a regular file"));
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return refused(file.errorString());
    // One byte over the limit is enough: the file may be growing.
    const QByteArray content = file.read(kLargestFile + 1);
    if (file.error() != QFileDevice::NoError)
        return refused(file.errorString());
    if (content.size() > kLargestFile)
        return refused(QStringLiteral("larger than %1 MiB").arg(kLargestFile / kMebibyte));
    return {content, {}};
}

QString WriteListFile(const QString& fileName, const QByteArray& content)
{
    const auto refused = [&fileName](const QString& reason) {
        return QStringLiteral("cannot write %1: %2").arg(fileName, reason);
    };

    // A pipe or device must not be replaced by a file.
    const QFileInfo former(fileName);
    if (former.exists() && !former.isFile())
        return refused(QStringLiteral("not a regular file"));
    Attempt last = Attempt::Done;
    const bool isWritten = Retry([&] { return last = WriteAtomically(fileName, content); });
    return isWritten ? QString() : refused(ObstacleTo(former, last));
}
