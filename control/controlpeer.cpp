// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "control/controlpeer.h"

#include "control/controlline.h"
#include "platform/tracing.h"

#include <algorithm>
#include <utility>

namespace {

constexpr auto kSource = "control/controlpeer";
// What the system and Qt hold for a peer at a time.
constexpr qint64 kWritten = qint64{256} * 1024;
// The most that waits for a peer that watches and does not read. An answer that is complete may be longer.
constexpr qsizetype kMaximumUnsentEvents = qsizetype{1024} * 1024;

} // namespace

ControlPeer::ControlPeer(QLocalSocket* socket, const QJsonObject& greeting, qint64 maximumDocument, QObject* parent)
    : ControlReply(parent)
    , m_pSocket(socket)
    , m_maximumDocument(maximumDocument)
{
    m_pSocket->setParent(this);
    m_pSocket->setReadBufferSize(ControlLine::kMaximumSize);
    m_patience.setObjectName(QStringLiteral("m_patience"));
    m_patience.setParent(this);
    m_patience.setSingleShot(true);
    m_patience.setInterval(ControlLine::kPatience);
    connect(&m_patience, &QTimer::timeout, this, &ControlPeer::TimedOut);
    connect(m_pSocket, &QLocalSocket::readyRead, this, &ControlPeer::Read);
    connect(m_pSocket, &QLocalSocket::bytesWritten, this, &ControlPeer::WriteOn);
    connect(m_pSocket, &QLocalSocket::disconnected, this, &QObject::deleteLater);
    m_patience.start();
    Send(greeting);
}

void ControlPeer::Send(const QJsonObject& line)
{
    if (m_unsent.size() - m_sent > kMaximumUnsentEvents)
        Drop(QStringLiteral("does not read"));
    else
        SendLines(ControlLine::Write(line));
}

void ControlPeer::SendLines(const QByteArray& lines)
{
    if (m_hasEnded)
        return;
    m_unsent = m_unsent.mid(m_sent) + lines;
    m_sent = 0;
    WriteOn();
}

void ControlPeer::End(int code, const QString& error)
{
    if (m_hasEnded)
        return;
    QJsonObject line{{QStringLiteral("type"), QStringLiteral("end")}, {QStringLiteral("code"), code}};
    if (!error.isEmpty())
        line.insert(QStringLiteral("error"), error);
    SendLines(ControlLine::Write(line));
    // Not closed here: a pipe of Windows would lose what has not been read.
    m_hasEnded = true;
    m_patience.start();
    m_pSocket->flush();
}

void ControlPeer::Drop(const QString& reason)
{
    m_hasEnded = true;
    m_patience.stop();
    m_unsent.clear();
    m_sent = 0;
    Trace(kSource, __LINE__, [&reason] {
        return QStringLiteral("ControlPeer::Drop(): A peer of the control channel is closed: %1").arg(reason);
    });
    m_pSocket->abort();
    deleteLater();
}

void ControlPeer::Read()
{
    while (m_pSocket->bytesAvailable() > 0 && m_pSocket->state() == QLocalSocket::ConnectedState) {
        const QByteArray part = m_pSocket->readLine(ControlLine::kMaximumSize + 1 - m_received.size());
        if (m_state == State::Complete) {
            Drop(QStringLiteral("it sends more than one request"));
            return;
        }
        m_received += part;
        if (!m_received.endsWith('\n')) {
            if (m_received.size() < ControlLine::kMaximumSize)
                continue;
            Drop(QStringLiteral("a line is longer than %1 bytes").arg(ControlLine::kMaximumSize));
            return;
        }
        if (const QString error = Take(std::exchange(m_received, {})); !error.isEmpty()) {
            Drop(error);
            return;
        }
    }
}

QString ControlPeer::Take(const QByteArray& line)
{
    const std::optional<QJsonObject> object = ControlLine::Read(line);
    if (!object)
        return QStringLiteral("a line is not a JSON object");
    m_patience.start();
    return m_state == State::Request ? TakeRequest(*object) : TakeDocument(*object);
}

QString ControlPeer::TakeRequest(const QJsonObject& line)
{
    m_request.content = line;
    if (line.value(QLatin1String("protocol")).toInt() != ControlLine::kProtocol) {
        m_state = State::Complete;
        End(4, QStringLiteral("this host speaks version %1 of the control protocol").arg(ControlLine::kProtocol));
        return {};
    }
    if (line.value(QLatin1String("hasDocument")).toBool()) {
        m_state = State::Document;
        return {};
    }
    Accept();
    return {};
}

QString ControlPeer::TakeDocument(const QJsonObject& line)
{
    m_request.document += line.value(QLatin1String("text")).toString().toUtf8();
    if (m_request.document.size() > m_maximumDocument)
        return QStringLiteral("the document is longer than %1 bytes").arg(m_maximumDocument);
    if (!line.value(QLatin1String("end")).toBool())
        return {};
    Accept();
    return {};
}

void ControlPeer::Accept()
{
    m_state = State::Complete;
    m_patience.stop();
    Send({{QStringLiteral("type"), QStringLiteral("accepted")}});
    // The work may block for longer than the peer waits.
    m_pSocket->flush();
    // Queued: the work may run an event loop in which this object is deleted, and functions of the socket are being
    // called now.
    QMetaObject::invokeMethod(
        this,
        [this] {
            // The host may have begun to end.
            if (!m_hasEnded)
                emit Requested(std::exchange(m_request, {}));
        },
        Qt::QueuedConnection);
}

void ControlPeer::WriteOn()
{
    while (m_sent < m_unsent.size() && m_pSocket->bytesToWrite() < kWritten) {
        const qint64 part = std::min<qint64>(m_unsent.size() - m_sent, kWritten);
        const qint64 written = m_pSocket->write(m_unsent.constData() + m_sent, part);
        if (written <= 0)
            break;
        m_sent += written;
        m_patience.start();
    }
    if (m_sent == m_unsent.size()) {
        m_unsent.clear();
        m_sent = 0;
    }
    if (m_pSocket->bytesToWrite() == 0 && m_state == State::Complete && !m_hasEnded)
        m_patience.stop();
}

void ControlPeer::TimedOut()
{
    if (m_hasEnded && m_pSocket->bytesToWrite() == 0)
        m_pSocket->disconnectFromServer(); // it has had its answer
    else
        Drop(m_state == State::Complete ? QStringLiteral("it does not read") : QStringLiteral("it is silent"));
}
