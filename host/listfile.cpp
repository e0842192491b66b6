#include "host/listfile.h"

#include "platform/patience.h"
#include "platform/wholefile.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

namespace {

constexpr qint64 s_mebibyte = 1 << 20;
constexpr qint64 s_largestFile = 64 * s_mebibyte;

/// Why `file` could not be written, for a person: where that cannot be told from what is there, by how the last attempt
/// went.
QString ObstacleTo(const QFileInfo& file, Attempt last)
{
    if (file.exists() && !file.isWritable())
        return QStringLiteral("it is write-protected");
    QTemporaryFile probe(QFileInfo(file.exists() ? file.canonicalFilePath() : file.filePath()).absolutePath() +
                         QStringLiteral("/.probe-XXXXXX"));
    if (!probe.open())
        return probe.errorString();
    return last == Attempt::Held ? QStringLiteral("it cannot take its place; another program may hold it")
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
    // Read no more than one byte too many: the file may be growing.
    const QByteArray content = file.read(s_largestFile + 1);
    if (file.error() != QFileDevice::NoError)
        return refused(file.errorString());
    if (content.size() > s_largestFile)
        return refused(QStringLiteral("larger than %1 MiB").arg(s_largestFile / s_mebibyte));
    return {content, {}};
}

QString WriteListFile(const QString& fileName, const QByteArray& content)
{
    const auto refused = [&fileName](const QString& reason) {
        return QStringLiteral("cannot write %1: %2").arg(fileName, reason);
    };

    // Replacing a pipe or a device by a file is not what writing to it means.
    const QFileInfo former(fileName);
    if (former.exists() && !former.isFile())
        return refused(QStringLiteral("not a regular file"));
    Attempt last = Attempt::Done;
    const bool isWritten = TryPatiently([&] { return last = WriteWholeFile(fileName, content); });
    return isWritten ? QString() : refused(ObstacleTo(former, last));
}
