// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>
#include <QStringList>

/// The entry by which this user's session starts the host in the tray.
///
/// Platform-specific: an autostart entry of the desktop in the user's configuration folder, or a value in the user's
/// part of the registry. Needs the application object.
namespace Autostart {

/// Returns where the entry is or would be, for the user.
QString Place();

/// Returns whether the session starts the host; false also for an entry that a desktop has switched off.
bool IsOn();

/// Writes the entry for this program with the option --hidden and `options`, or removes it. Returns why that failed,
/// for the user; empty on success.
QString Set(bool isOn, const QStringList& options);

} // namespace Autostart
