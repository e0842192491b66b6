// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/system/environment.h"

#include <QFile>

void Environment::Set(const char* name, const QString& value)
{
    qputenv(name, QFile::encodeName(value));
}

void Environment::Prepend(const char* name, const QString& folder)
{
    QByteArray list = QFile::encodeName(folder);
    // Kept as bytes: the existing folders need not be valid text.
    if (!qEnvironmentVariableIsEmpty(name))
        list += ':' + qgetenv(name);
    qputenv(name, list);
}
