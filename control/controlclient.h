#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QLocalSocket>
#include <QObject>
#include <QString>

#include <functional>

/// The other end of the control channel: finds the host of a configuration directory and sends it one request. Blocks in
/// an event loop. Needs the QCoreApplication.
class ControlClient : public QObject
{
    Q_OBJECT

public:
    enum class State {
        NoHost,    ///< nobody uses the configuration directory
        Connected, ///< a host has answered
        Failed     ///< somebody uses it, but cannot be spoken with: see `Error`
    };

    using QObject::QObject;

    /// Connects to the host that uses `configDirectory`. Waits up to 10 s for one that is starting, and for a process
    /// without an address, such as another `vexelctl`, to end.
    State Connect(const QString& configDirectory);

    /// Returns the host's first line: "program", "version", "process".
    const QJsonObject& Greeting() const { return m_greeting; }
    /// Returns why the last call failed; empty if it did not.
    const QString& Error() const { return m_error; }

    /// Receives each line of the answer but "accepted" and "end".
    using Receiver = std::function<void(const QJsonObject& line)>;

    /// Sends a request, followed by `document` if it is not empty, and waits for the end of the answer: up to 10 s until
    /// it is accepted, and then as long as the host lives. Returns the command's exit code, 4 if the host does not
    /// answer or ends before, or 128 + the signal after `Interrupt`. Call once, after `Connected`.
    int Run(QJsonObject request, const Receiver& onLine, const QByteArray& document = {});

    /// Waits until the host has closed the connection, which it does when it ends. Returns false after 10 s.
    bool WaitForEnd();

public slots:
    /// Ends `Run` because of a signal.
    void Interrupt(int signal) { emit Interrupted(signal); }

signals:
    void Interrupted(int signal);

private:
    bool Greet();
    int Fail(const QString& error);

    QLocalSocket m_socket;
    QByteArray m_received;
    QJsonObject m_greeting;
    QString m_error;
};
