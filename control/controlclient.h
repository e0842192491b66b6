// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "control/controlline.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QJsonObject>
#include <QLocalSocket>
#include <QObject>
#include <QString>

#include <chrono>
#include <functional>

/// The other end of the control channel: finds the host of a configuration directory and sends it one request. Blocks
/// in an event loop. Needs the QCoreApplication.
class ControlClient : public QObject
{
    Q_OBJECT

public:
    enum class State {
        NoHost,    ///< nobody uses the configuration directory
        Connected, ///< a host has answered
        Failed     ///< somebody uses it, but cannot be spoken with: see `Error`
    };

    /// Waits for the host for up to `patience` at a time.
    explicit ControlClient(std::chrono::milliseconds patience = ControlLine::kPatience);

    /// Connects to the host that uses `configDirectory`. Waits for one that is starting, and for the end of a process
    /// without an address, such as another `vexelctl`.
    State Connect(const QString& configDirectory);

    /// Returns the host's first line: "program", "version", "process".
    const QJsonObject& Greeting() const { return m_greeting; }
    /// Returns why the last call failed; empty if it did not.
    const QString& Error() const { return m_error; }

    /// Receives each line of the answer but "accepted" and "end".
    using Receiver = std::function<void(const QJsonObject& line)>;

    /// Sends a request, followed by `document` if it is not empty, and waits until it is accepted, and then for the end
    /// of the answer as long as the host lives. Returns the command's exit code, 4 if the host does not answer or ends
    /// before, or 128 + the signal after `Interrupt`. Call once, after `Connected`.
    int Run(QJsonObject request, const Receiver& onLine, const QByteArray& document = {});

    /// After an accepted "quit": waits until the host has released `configDirectory`. Returns false if it does not.
    bool WaitForEnd(const QString& configDirectory);

public slots:
    /// Ends `Run` because of a signal.
    void Interrupt(int signal) { emit Interrupted(signal); }

signals:
    void Interrupted(int signal);

private:
    bool TryConnect(const QString& address, QDeadlineTimer deadline);
    bool IsGreetedWell();
    int Fail(const QString& error);

    const std::chrono::milliseconds m_patience;

    QLocalSocket m_socket;
    QByteArray m_received;
    QJsonObject m_greeting;
    QString m_error;
};
