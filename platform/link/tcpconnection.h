// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/interfaces.h"
#include "platform/link/tcpaddress.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <chrono>

class QTcpSocket;
class ReadBudget;

/// One TCP connection: of a server to a peer, or of a client to its server. Calls the callback in the order and applies
/// the limits that interfaces.h documents.
///
/// Socket signals are only recorded; the callback is called later, from the event loop. So no socket function is on the
/// stack when a callback deletes this object.
class TcpConnection : public QObject, public IInterface
{
    Q_OBJECT

public:
    /// Creates the connection of a server to a peer, which may already have disconnected; `OnOpen` follows. Takes
    /// ownership of `socket`, whose read buffer must be limited. A `timeOut` of 0 is none. `budget` is the server's;
    /// not owned.
    TcpConnection(QTcpSocket* socket, IInterfaceCallback* callback, std::chrono::milliseconds timeOut,
                  ReadBudget* budget);
    /// Creates a client that is not open yet. A `timeOut` of 0 is none.
    TcpConnection(const TcpAddress& address, IInterfaceCallback* callback, std::chrono::milliseconds timeOut);
    ~TcpConnection() override;

    /// Limits the read buffer of `socket`. Call before the socket can receive data.
    static void LimitReadBuffer(QTcpSocket* socket);

    bool Open() override;
    void Close() override;
    bool IsOpen() const override;
    void Write(const char* data, quint64 length) override;
    void Read(char* buffer, quint64* length, bool flag) override;

    /// Returns the time since the connection was established, in milliseconds.
    qint64 Age() const { return m_age.elapsed(); }
    /// Returns whether the socket is disconnected; the callback may not have been called yet.
    bool IsDisconnected() const;
    /// Returns whether the end has been reported and the callback has returned.
    bool HasEnded() const { return m_phase == Phase::Idle && !m_bReporting; }

signals:
    /// `HasEnded` is true. May be emitted more than once.
    void Ended();

private:
    enum class Phase {
        Idle,       // nothing to report
        Connecting, // a client is connecting, or the `OnOpen` of a server's peer is pending
        Open        // `OnOpen` has been reported, `OnClose` has not
    };

    TcpConnection(QTcpSocket* socket, TcpAddress address, IInterfaceCallback* callback,
                  std::chrono::milliseconds timeOut, ReadBudget* budget);

    void Connected();
    void Fail(const QString& reason);
    void TimedOut();
    void RestartTimeOut();
    QString PeerName() const;

    /// Queues a call of `Report`.
    void Schedule();
    void Report();
    /// Reports the next event; returns false if there is none. The callback may have deleted this object.
    bool ReportNext();
    bool ReportRead();

    QTcpSocket* const m_pSocket;
    const TcpAddress m_address; // port 0 for a connection of a server
    IInterfaceCallback* const m_pCallback;
    ReadBudget* const m_pBudget; // null for a client
    QTimer m_timeOut;
    QElapsedTimer m_age;

    Phase m_phase = Phase::Idle;
    bool m_bConnected = false; // to be reported
    bool m_bFailed = false;    // to be reported
    quint64 m_uWritten = 0;    // bytes, to be reported
    qint64 m_iReceived = 0;    // bytes reported since the connection was established
    qint64 m_iUnread = 0;      // bytes of the current `OnRead` that the callback has not read
    bool m_bScheduled = false;
    bool m_bReporting = false;
};
