#pragma once

#include "userinterface/vexelconnectdlg/connection.h"

#include <QString>
#include <QStringList>

/// The arguments with which the user-interface application `application` is started for `entry`, whose device type as
/// `Connection::ApplicationDeviceType` gives it is `servedType`.
///
/// The first names the application; what follows depends on the entry's device type and is read by the started
/// application. A server mode without a port for the driver, and a device type that has no arguments of its own, are
/// traced as the launcher's.
QStringList ApplicationArguments(const QString& application, const Connection& entry, int servedType);
