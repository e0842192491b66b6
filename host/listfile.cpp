#include "host/listfile.h"

#include "platform/foldersync.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace {

constexpr qint64 s_mebibyte = 1 << 20;
constexpr qint64 s_largestFile = 64 * s_mebibyte;

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
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly))
        return refused(file.errorString());
    // A disk that fills up takes a part without calling that an error.
    if (file.write(content) != content.size()) {
        const QString reason = file.error() == QFileDevice::NoError ? QStringLiteral("no room") : file.errorString();
        file.cancelWriting();
        return refused(reason);
    }
    if (!file.commit())
        return refused(file.errorString());
    SyncFolder(former.absolutePath()); // where that fails, the file is there all the same
    return {};
}
