#include "host/desktop/programicon.h"

/// A static library's resources are there only when they are asked for. Not in a namespace, where that cannot be done.
static void ProvideDrawings()
{
    Q_INIT_RESOURCE(vexelhost);
}

QIcon ProgramIcon(bool isInUse)
{
    ProvideDrawings();
    const QString name = isInUse ? QStringLiteral("tray-in-use") : QStringLiteral("tray");
    QIcon icon;
    // Sizes of their own, because thin lines blur when they are scaled.
    for (const int size : {16, 22, 24, 32, 48, 64})
        icon.addFile(QStringLiteral(":/vexelhost/%1-%2.png").arg(name).arg(size));
    return icon;
}
