#include "starter/privatefolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>
#include <unistd.h>

bool EnsurePrivateFolder(const QString& path)
{
    QDir().mkpath(QFileInfo(path).path());
    const QByteArray name = QFile::encodeName(path);
    (void)::mkdir(name.constData(), S_IRWXU);
    struct stat folder = {};
    return ::lstat(name.constData(), &folder) == 0 && S_ISDIR(folder.st_mode) && folder.st_uid == ::geteuid() &&
           (folder.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}
