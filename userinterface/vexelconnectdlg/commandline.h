#pragma once

#include "userinterface/vexelconnectdlg/connection.h"

#include <QString>
#include <QStringList>

/// Returns the arguments with which the user-interface application `application` is started for `entry`. `servedType`
/// is the entry's device type as normalised by `Connection::ApplicationDeviceType`.
///
/// The first argument names the application; the others depend on the entry's device type. Traces, in the name of the
/// launcher, a driver address without a port and a device type without further arguments.
QStringList ApplicationArguments(const QString& application, const Connection& entry, int servedType);
