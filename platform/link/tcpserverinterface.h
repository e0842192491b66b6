// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/interfaces.h"
#include "platform/link/readbudget.h"
#include "platform/link/tcplisten.h"

#include <QDeadlineTimer>
#include <QHostAddress>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <memory>
#include <vector>

class QTcpServer;
class TcpConnection;

/// A server of the connections library: listens on the loopback addresses and owns its peers.
class TcpServerInterface : public QObject, public IInterface
{
    Q_OBJECT

public:
    /// Does not listen yet. A `timeOut` of 0 is none.
    TcpServerInterface(quint16 port, IInterfaceCallback* callback, std::chrono::milliseconds timeOut);
    ~TcpServerInterface() override;

    bool Open() override;
    void Close() override;
    bool IsOpen() const override;
    void Write(const char* data, quint64 length) override;
    void Read(char* buffer, quint64* length, bool flag) override;

private:
    ListenResult Listen(const QHostAddress& address);
    /// Accepts pending connections while there are free places.
    void AcceptPending();
    /// Returns whether a peer can be accepted. If not, closes the oldest peer as soon as that is allowed;
    /// `AcceptPending` is then called again.
    bool MakeRoom();
    /// Returns how long each peer may stay at present, in milliseconds.
    int PeerTime() const;
    void RemoveEndedPeers();
    void AcceptFailed();

    const quint16 m_uPort;
    IInterfaceCallback* const m_pCallback;
    const std::chrono::milliseconds m_timeOut;
    QTimer m_evictionTimer;
    QTimer m_retryTimer;
    QDeadlineTimer m_pressure; // after an eviction, until callers have had time to come again
    int m_iPeerTime = CInterfaceCreator::kMinimumPeerTime; // under pressure, in milliseconds
    ReadBudget m_budget;
    std::vector<std::unique_ptr<QTcpServer>> m_listeners; // least recently served first
    std::vector<std::unique_ptr<TcpConnection>> m_peers;  // oldest first
};
