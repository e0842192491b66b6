// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "control/controlclient.h"
#include "host/output/exitcode.h"
#include "vexelctl/commandline.h"

#include <QByteArray>
#include <QJsonObject>

class InstanceLock;

/// The plug-in off screen, where no host runs. Needs the QApplication. Errors are printed.
namespace OffScreen {

/// Carries out one request as a host does, and ends then. `onLine` receives the lines of the answer. Meanwhile it takes
/// the requests of other processes. `lock` is that of the configuration directory.
ExitCode Run(const CtlOptions& options, const InstanceLock& lock, const QJsonObject& request,
             const ControlClient::Receiver& onLine);

/// Gets a picture of the dialog as PNG. Changes nothing in the configuration.
ExitCode GetPicture(const CtlOptions& options, QByteArray& picture);

} // namespace OffScreen
