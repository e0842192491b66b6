// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "control/controlreply.h"

#include <QJsonObject>
#include <QList>
#include <QLocalServer>
#include <QObject>
#include <QString>

class ControlPeer;

/// The host's end of the control channel: a local socket or named pipe that only this user can open, with at most 16
/// peers. It never blocks. Errors of peers are traced.
class ControlServer : public QObject
{
    Q_OBJECT

public:
    static constexpr int kMaximumPeers = 16;

    /// Documents that peers send may have up to `maximumDocument` bytes. `program` is what a peer is told it speaks to.
    ControlServer(qint64 maximumDocument, QString program, QObject* parent = nullptr);

    /// Listens at `address`, see `NewControlAddress`. Returns why it cannot; empty if it does. A socket that a killed
    /// process has left there is removed: the caller makes sure that no other process listens there.
    QString Listen(const QString& address);

    /// Ends the answers that peers still wait for, and waits for a moment until they have read them.
    void Close();

signals:
    /// A peer has sent a request. `reply` deletes itself when the peer has gone, and must get an `End`.
    void Requested(const ControlRequest& request, ControlReply* reply);

private:
    void Accept();
    /// Returns whether there is a place for another peer. Closes the oldest one that has not asked for anything.
    bool MakeRoom();

    const qint64 m_maximumDocument;
    const QJsonObject m_greeting;
    QLocalServer m_server;
    QList<ControlPeer*> m_peers; // oldest first
};
