// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QIcon>

/// Returns the host's icon for title bars, the task bar and the system tray; a different one if entries are in use.
/// Needs a QGuiApplication.
QIcon ProgramIcon(bool isInUse = false);
