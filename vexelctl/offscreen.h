#pragma once

#include "control/controlclient.h"
#include "host/options/sessionoptions.h"
#include "host/plugin/pluginsession.h"

#include <QJsonObject>
#include <QString>

/// Carries out a request of the control channel in this process, with the plug-in's dialog off screen. Calls `onLine`
/// for each line of the answer but the last. Returns the exit code, and sets `error` to why the request failed, if that
/// has not been printed.
///
/// Message boxes are answered automatically. The applications end with this function. While it runs, other programs can
/// speak with this process as with a host, unless the `mode` is read-only. Creates the application object: there must
/// not be one yet. `program` is argv[0].
int RunOffScreen(const SessionOptions& options, PluginSession::Mode mode, const QJsonObject& request,
                 const ControlClient::Receiver& onLine, QString* error, char* program);
