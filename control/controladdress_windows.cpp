// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "control/controladdress.h"

#include <QUuid>

QString NewControlAddress(const QString& /*configDirectory*/)
{
    // Another user could have made a pipe of a name that can be guessed.
    return QStringLiteral("vexelhost-") + QUuid::createUuid().toString(QUuid::Id128);
}
