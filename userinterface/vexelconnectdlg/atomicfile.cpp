#include "userinterface/vexelconnectdlg/atomicfile.h"

#include <QFileInfo>
#include <QSaveFile>

bool ReplaceFile(const QString& path, const QByteArray& content)
{
    // Replacing a pipe or a device by a file is not what writing to it means.
    const QFileInfo former(path);
    if (former.exists() && !former.isFile())
        return false;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    // A disk that fills up takes a part without calling that an error.
    if (file.write(content) != content.size())
        file.cancelWriting();
    return file.commit();
}
