#pragma once

#include "control/controlclient.h"
#include "host/output/exitcode.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

/// Sends `request` to the host that `client` is connected to. The host's messages, and why it refuses, go to standard
/// error; `onLine` receives the other lines of the answer. An interruption by the user ends the request, not the host's
/// work, and gives 128 + the signal.
ExitCode Request(ControlClient& client, const QJsonObject& request, const ControlClient::Receiver& onLine,
                 const QByteArray& document = {});

/// Returns a request for `command`.
QJsonObject NewRequest(const char* command);

/// Returns the type of a line of an answer.
QString TypeOf(const QJsonObject& line);

/// Prints why the host cannot be spoken with. Returns `Busy`.
ExitCode FailConnect(const ControlClient& client);
