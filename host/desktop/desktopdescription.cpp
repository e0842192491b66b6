// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/desktop/desktopdescription.h"

#include <QApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QScreen>
#include <QStyle>

QByteArray DesktopDescription()
{
    QJsonArray screens;
    const QList<QScreen*> all = QGuiApplication::screens();
    for (const QScreen* screen : all) {
        const QRect place = screen->geometry();
        screens.append(QJsonObject{
            {QStringLiteral("name"), screen->name()},
            {QStringLiteral("size"), QStringLiteral("%1x%2").arg(place.width()).arg(place.height())},
            {QStringLiteral("scale"), screen->devicePixelRatio()},
            {QStringLiteral("dotsPerInch"), screen->logicalDotsPerInch()},
        });
    }
    const QJsonObject description{{QStringLiteral("platform"), QGuiApplication::platformName()},
                                  {QStringLiteral("style"), QApplication::style()->name()},
                                  {QStringLiteral("screens"), screens}};
    return QJsonDocument(description).toJson(QJsonDocument::Compact) + '\n';
}
