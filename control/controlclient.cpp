// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "control/controlclient.h"

#include "platform/instancelock.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QThread>
#include <QTimer>

#include <optional>

namespace {

constexpr unsigned long kRetryMs = 50;
constexpr int kBusy = 4;
// A host with a long list answers later than it accepts.
constexpr int kLongWork = 6;

} // namespace

ControlClient::ControlClient(std::chrono::milliseconds patience)
    : m_patience(patience)
{
}

ControlClient::State ControlClient::Connect(const QString& configDirectory)
{
    const QDeadlineTimer deadline(m_patience);
    do {
        const InstanceLock::Owner owner = InstanceLock::Query(configDirectory);
        if (owner.state != InstanceLock::State::Somebody)
            return State::NoHost;
        if (owner.address.isEmpty()) {
            m_error = QStringLiteral("%1 uses the configuration directory %2")
                          .arg(owner.process == 0 ? QStringLiteral("another process")
                                                  : QStringLiteral("process %1").arg(owner.process),
                               configDirectory);
        } else if (TryConnect(owner.address, deadline)) {
            return IsGreetedWell() ? State::Connected : State::Failed;
        }
        // It is starting or ending, is busy with others, or works for a moment only.
        QThread::msleep(kRetryMs);
    } while (!deadline.hasExpired());
    return State::Failed;
}

/// Connects to `address` and reads the first line. Returns false, with the error set, if there is none.
bool ControlClient::TryConnect(const QString& address, QDeadlineTimer deadline)
{
    m_received.clear();
    m_socket.connectToServer(address);
    bool isConnected = m_socket.waitForConnected(static_cast<int>(deadline.remainingTime()));
    while (isConnected && !m_received.contains('\n') && m_received.size() <= ControlLine::kMaximumSize) {
        isConnected = m_socket.waitForReadyRead(static_cast<int>(deadline.remainingTime()));
        m_received += m_socket.readAll();
    }
    if (m_received.contains('\n'))
        return true;
    m_error = m_socket.state() == QLocalSocket::ConnectedState
                  ? QStringLiteral("the running host does not answer")
                  : QStringLiteral("the running host is busy with others, or is ending");
    m_socket.abort();
    return false;
}

/// Returns whether the first line is a host's, of the same version of the protocol. Sets the error if it is not.
bool ControlClient::IsGreetedWell()
{
    const qsizetype end = m_received.indexOf('\n');
    m_greeting = ControlLine::Read(m_received.left(end)).value_or(QJsonObject());
    m_received.remove(0, end + 1);
    const int protocol = m_greeting.value(QLatin1String("protocol")).toInt();
    if (protocol == ControlLine::kProtocol) {
        m_error.clear();
        return true;
    }
    m_error = protocol == 0 ? QStringLiteral("what answers is not a host")
                            : QStringLiteral("the running host, version %1, speaks version %2 of the control protocol, "
                                             "and this program version %3; use the vexelctl of that version")
                                  .arg(m_greeting.value(QLatin1String("version")).toString(), QString::number(protocol),
                                       QString::number(ControlLine::kProtocol));
    return false;
}

int ControlClient::Run(QJsonObject request, const Receiver& onLine, const QByteArray& document)
{
    request.insert(QStringLiteral("protocol"), ControlLine::kProtocol);
    request.insert(QStringLiteral("hasDocument"), !document.isEmpty());
    m_socket.write(ControlLine::Write(request));
    if (!document.isEmpty()) {
        m_socket.write(ControlLine::WriteParts(QString::fromUtf8(document), {}));
        m_socket.write(ControlLine::Write({{QStringLiteral("end"), true}}));
    }

    QEventLoop loop;
    QTimer patience;
    patience.setSingleShot(true);
    std::optional<int> result;
    const auto end = [&](int code) {
        if (!result)
            result = code;
        loop.quit();
    };
    const auto take = [&](const QJsonObject& line) {
        const QString type = line.value(QLatin1String("type")).toString();
        if (type == QLatin1String("end")) {
            m_error = line.value(QLatin1String("error")).toString();
            end(line.value(QLatin1String("code")).toInt(kBusy));
        } else if (type == QLatin1String("accepted")) {
            // The other commands take as long as users and applications do.
            static const QStringList kShort{QStringLiteral("list"), QStringLiteral("status"), QStringLiteral("export"),
                                            QStringLiteral("save"), QStringLiteral("show"),   QStringLiteral("quit")};
            if (kShort.contains(request.value(QLatin1String("command")).toString()))
                patience.start(kLongWork * m_patience);
            else
                patience.stop();
        } else {
            onLine(line);
        }
    };
    const auto read = [&] {
        m_received += m_socket.readAll();
        qsizetype begin = 0;
        for (qsizetype next; !result && (next = m_received.indexOf('\n', begin)) >= 0; begin = next + 1)
            take(ControlLine::Read(m_received.mid(begin, next - begin)).value_or(QJsonObject()));
        m_received.remove(0, begin);
    };
    connect(&m_socket, &QLocalSocket::readyRead, &loop, read);
    connect(&m_socket, &QLocalSocket::bytesWritten, &patience, [&] { patience.start(m_patience); });
    connect(
        &m_socket, &QLocalSocket::disconnected, &loop,
        [&] {
            read();
            if (!result)
                end(Fail(QStringLiteral("the running host has ended")));
        });
    connect(
        &patience, &QTimer::timeout, &loop, [&] { end(Fail(QStringLiteral("the running host does not answer"))); });
    connect(this, &ControlClient::Interrupted, &loop, [&](int signal) { end(128 + signal); });
    patience.start(m_patience);
    // What came with the greeting.
    QMetaObject::invokeMethod(&loop, read, Qt::QueuedConnection);
    if (m_socket.state() != QLocalSocket::ConnectedState)
        return Fail(QStringLiteral("the running host has ended"));
    loop.exec();
    return *result;
}

bool ControlClient::WaitForEnd(const QString& configDirectory)
{
    m_socket.abort();
    const qint64 process = m_greeting.value(QLatin1String("process")).toInteger();
    const QDeadlineTimer deadline(m_patience);
    while (!deadline.hasExpired()) {
        const InstanceLock::Owner owner = InstanceLock::Query(configDirectory);
        if (owner.state != InstanceLock::State::Somebody || owner.process != process)
            return true;
        QThread::msleep(kRetryMs);
    }
    return false;
}

int ControlClient::Fail(const QString& error)
{
    m_error = error;
    return kBusy;
}
