#pragma once

#include <QIcon>

/// The host's icon, in windows' title bars, the task bar and the system tray; another one while entries are in use.
/// Needs a QGuiApplication.
QIcon ProgramIcon(bool isInUse = false);
