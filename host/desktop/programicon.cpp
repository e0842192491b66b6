// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/desktop/programicon.h"

/// Registers the static library's resources. Q_INIT_RESOURCE does not work inside a namespace.
static void InitResources()
{
    Q_INIT_RESOURCE(vexelhost);
}

QIcon ProgramIcon(bool isInUse)
{
    InitResources();
    const QString name = isInUse ? QStringLiteral("tray-in-use") : QStringLiteral("tray");
    QIcon icon;
    // One image per size, because thin lines blur when scaled.
    for (const int size : {16, 22, 24, 32, 48, 64})
        icon.addFile(QStringLiteral(":/vexelhost/%1-%2.png").arg(name).arg(size));
    return icon;
}
