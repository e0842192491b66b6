// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "control/controlclient.h"
#include "host/output/exitcode.h"
#include "platform/instancelock.h"
#include "vexelctl/commandline.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <memory>

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

/// Returns whether `options` have one that works only without a host, after an error.
bool HasSessionOption(const CtlOptions& options, const ControlClient& client);

/// The way to change a configuration: by the host that runs on it or, without one, alone, with its lock.
class Access
{
public:
    enum class Kind {
        Host,  ///< `Client` is connected
        Alone, ///< this process holds `Lock`
        None   ///< neither, after an error: see `Error`
    };

    /// Gets access to `directory`, which is created if missing. Waits for the end of another process that works there
    /// for a moment.
    Kind Get(const QString& directory);

    ControlClient& Client() { return m_client; }
    const InstanceLock& Lock() const { return *m_pLock; }
    ExitCode Error() const { return m_error; }

private:
    Kind Fail(ExitCode code, const QString& error);

    ControlClient m_client;
    std::unique_ptr<InstanceLock> m_pLock;
    ExitCode m_error = ExitCode::Done;
};
