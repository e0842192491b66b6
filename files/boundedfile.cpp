#include "files/boundedfile.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

std::optional<QByteArray> ReadRegularFile(const QString& path, qint64 limit)
{
    // Checked by path, because a pipe must not even be opened.
    if (!QFileInfo(path).isFile())
        return std::nullopt;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > limit)
        return std::nullopt;

    // Read in pieces, because a file may grow meanwhile, and some regular files report no size.
    constexpr qint64 kPieceSize = qint64{1024} * 1024;
    QByteArray content;
    while (content.size() <= limit) {
        const QByteArray piece = file.read(std::min(kPieceSize, limit + 1 - content.size()));
        if (piece.isEmpty())
            break;
        content += piece;
    }
    if (content.size() > limit || file.error() != QFileDevice::NoError)
        return std::nullopt;
    return content;
}
