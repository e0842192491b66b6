#include "host/appendfile.h"

bool OpenToAppend(QFile& file, const QString& name, QString* error)
{
    file.setFileName(name);
    if (file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered))
        return true;
    *error = file.errorString();
    return false;
}

bool IsOpenAt(const QFile& /*file*/, const QString& /*name*/)
{
    // While a file is open here, the system neither removes nor renames it.
    return true;
}
