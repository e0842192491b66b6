// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "control/controlreply.h"

#include <QByteArray>
#include <QLocalSocket>
#include <QTimer>

#include <functional>

/// One connection of a server: reads a request within limits and sends the answer as fast as the peer reads.
///
/// A peer that is silent, sends something else than one request, or does not read, is closed. Deletes itself when the
/// connection has ended.
class ControlPeer : public ControlReply
{
    Q_OBJECT

public:
    /// Takes ownership of `socket`. Documents may have up to `maximumDocument` bytes.
    ControlPeer(QLocalSocket* socket, const QJsonObject& greeting, qint64 maximumDocument, QObject* parent);

    void Send(const QJsonObject& line) override;
    void SendLines(const QByteArray& lines) override;
    void End(int code, const QString& error = {}) override;

    /// Returns whether the request is complete.
    bool HasAsked() const { return m_state == State::Complete; }

    /// Closes the connection and traces `reason`.
    void Drop(const QString& reason);

signals:
    /// The request is complete. Emitted once.
    void Requested(const ControlRequest& request);

private:
    void Read();
    /// Returns why the line is not accepted; empty if it is.
    QString Take(const QByteArray& line);
    QString TakeRequest(const QJsonObject& line);
    QString TakeDocument(const QJsonObject& line);
    void Accept();
    void WriteOn();
    void TimedOut();

    enum class State { Request, Document, Complete };

    QLocalSocket* const m_pSocket;
    const qint64 m_maximumDocument;
    State m_state = State::Request;
    ControlRequest m_request;
    QByteArray m_received; // the beginning of a line
    QByteArray m_unsent;
    qsizetype m_sent = 0; // of m_unsent
    bool m_hasEnded = false;
    QTimer m_patience; // runs while the peer has to do something
};
