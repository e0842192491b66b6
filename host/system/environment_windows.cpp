#include "host/system/environment.h"

#include <cstdlib>
#include <string>

// Not Qt's own functions for it: those go through the narrow characters of the country that Windows is set to, which
// lack most letters where its code page is not UTF-8.

void Environment::Set(const char* name, const QString& value)
{
    // The system's variables, and the C run time's copy of them, which Qt reads.
    _wputenv_s(QString::fromLatin1(name).toStdWString().c_str(), value.toStdWString().c_str());
}

void Environment::Prepend(const char* name, const QString& folder)
{
    const QString others = qEnvironmentVariable(name);
    Set(name, others.isEmpty() ? folder : folder + u';' + others);
}
