// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "userinterface/vexelconnectdlg/connection.h"

#include <QString>
#include <QStringList>

/// How a user-interface application is started for an entry.
struct CommandLine
{
    QStringList arguments;
    bool lacksPort = false;  ///< the driver address has no port, and the device type has no default one
    bool isSupported = true; ///< false: nothing but the first argument is known for the device type
};

/// Returns the command line with which the user-interface application `application` is started for `entry`.
/// `servedType` is the entry's device type as normalised by `Connection::ApplicationDeviceType`.
///
/// The first argument names the application; the others depend on the entry's device type.
CommandLine ApplicationCommandLine(const QString& application, const Connection& entry, int servedType);
