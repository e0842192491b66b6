#include "userinterface/vexelconnectdlg/atomicfile.h"

#include <QFileInfo>
#include <QSaveFile>

bool ReplaceFile(const QString& path, const QByteArray& content)
{
    // A pipe or a device must not be replaced by a file.
    const QFileInfo former(path);
    if (former.exists() && !former.isFile())
        return false;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    // QSaveFile does not report a short write, such as on a full disk.
    if (file.write(content) != content.size())
        file.cancelWriting();
    return file.commit();
}
