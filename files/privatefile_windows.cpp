// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/privatefile.h"

#include <QDir>
#include <QFile>

bool CreatePrivateFile(const QString& file)
{
    return QFile(file).open(QIODevice::WriteOnly | QIODevice::NewOnly);
}

bool CreatePrivateFolder(const QString& folder)
{
    return QDir().mkdir(folder);
}
