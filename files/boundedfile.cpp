// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/boundedfile.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include <algorithm>

std::optional<QByteArray> ReadRegularFile(const QString& path, qint64 limit, QString* error)
{
    const auto refused = [error](const QString& reason) {
        if (error)
            *error = reason;
        return std::nullopt;
    };

    // Checked by path, because a pipe must not even be opened.
    const QFileInfo info(path);
    if (!info.exists())
        return refused(QStringLiteral("no such file"));
    if (!info.isFile())
        return refused(QStringLiteral("not a regular file"));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return refused(file.errorString());

    // Read in pieces, because a file may grow meanwhile, and some regular files report no size.
    constexpr qint64 kPieceSize = qint64{1024} * 1024;
    QByteArray content;
    while (file.size() <= limit && content.size() <= limit) {
        const QByteArray piece = file.read(std::min(kPieceSize, limit + 1 - content.size()));
        if (piece.isEmpty())
            break;
        content += piece;
    }
    if (file.error() != QFileDevice::NoError)
        return refused(file.errorString());
    if (std::max<qint64>(file.size(), content.size()) > limit)
        return refused(QStringLiteral("larger than %1").arg(QLocale::c().formattedDataSize(limit, 0)));
    return content;
}
