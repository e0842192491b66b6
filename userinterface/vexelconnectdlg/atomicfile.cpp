#include "userinterface/vexelconnectdlg/atomicfile.h"

#include <QSaveFile>

bool ReplaceFile(const QString& path, const QByteArray& content)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    // An error while writing is kept by the file and makes the commit fail.
    file.write(content);
    return file.commit();
}
