// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/system/environment.h"

#include <cstdlib>
#include <string>

// Not qputenv(): it converts to the system's code page, which lacks most characters unless it is UTF-8.

void Environment::Set(const char* name, const QString& value)
{
    // Sets the system's variable and the C run-time's copy, which Qt reads.
    _wputenv_s(QString::fromLatin1(name).toStdWString().c_str(), value.toStdWString().c_str());
}

void Environment::Prepend(const char* name, const QString& folder)
{
    const QString others = qEnvironmentVariable(name);
    Set(name, others.isEmpty() ? folder : folder + u';' + others);
}
