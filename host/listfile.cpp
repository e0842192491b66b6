#include "host/listfile.h"

#include <QFile>
#include <QFileInfo>

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
