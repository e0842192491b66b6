#include "starter/privatefolder.h"

#include <QDir>

// Folders in the user's profile inherit its access rights.
bool EnsurePrivateFolder(const QString& path)
{
    return QDir().mkpath(path);
}
