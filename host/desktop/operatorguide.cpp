// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/desktop/operatorguide.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QUrl>

QString OperatorGuide::File(const QString& programDirectory)
{
    const QDir folder(
        QDir::cleanPath(QDir(programDirectory).absoluteFilePath(QStringLiteral(VEXEL_BIN_TO_DATA "/guide"))));
    //: The file of the guide in this language.
    for (const QString& name : {tr("guide_en.html"), QStringLiteral("guide_en.html")})
        if (QFileInfo(folder.filePath(name)).isFile())
            return folder.filePath(name);
    return {};
}

bool OperatorGuide::Open(const QString& file)
{
    return QDesktopServices::openUrl(QUrl::fromLocalFile(file));
}
