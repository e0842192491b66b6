#include "starter/privatefolder.h"

#include "files/atomicfile.h"

// Folders in the user's profile inherit its access rights.
bool EnsurePrivateFolder(const QString& path)
{
    return CreateFolder(path);
}
