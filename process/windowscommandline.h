// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>
#include <QStringList>

/// Joins `arguments` into a Windows command line that the C run-time splits into the same arguments. Backslashes are
/// special only before a double quote.
QString WindowsCommandLine(const QStringList& arguments);
