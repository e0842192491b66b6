// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/siblingname.h"

#include <QDateTime>
#include <QFileInfo>

QString UniqueSiblingName(const QString& file, const QString& mark, const QDateTime& time)
{
    const QString first = file + mark + time.toUTC().toString(QStringLiteral("yyyyMMddTHHmmsszzz"));
    QString name = first;
    const auto isTaken = [&name] {
        return QFileInfo(name).isSymLink() || QFileInfo::exists(name);
    };
    for (int i = 2; isTaken(); ++i)
        name = first + QStringLiteral("-%1").arg(i);
    return name;
}
