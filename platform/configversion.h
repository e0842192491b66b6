// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QDateTime>
#include <QString>

/// An earlier version of a configuration document.
struct ConfigVersion
{
    QString file;    ///< absolute path
    QDateTime saved; ///< when this version was written to the document; local time
};
