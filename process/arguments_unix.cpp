// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "process/arguments.h"

#include <QFile>

QString ArgumentsError(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        const QByteArray argument(argv[i]);
        if (argument.isValidUtf8())
            continue;
        return QStringLiteral("argument %1 is not valid UTF-8: \"%2\"")
            .arg(QString::number(i), QString::fromUtf8(argument));
    }
    return {};
}
