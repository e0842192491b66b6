// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QVariant>

/// Returns the help text of column `section` of the connections table, for tool tips and the status bar. Invalid if
/// there is no such column.
QVariant ConnectionsColumnHelp(int section);
