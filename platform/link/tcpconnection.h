#pragma once

#include "platform/interfaces.h"
#include "platform/link/tcpaddress.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <chrono>

class QTcpSocket;

/// One TCP connection, a server's to a caller or a client's to its host: reports to the callback in the order that the
/// library promises, and keeps its bounds.
///
/// What the socket reports is only noted, and the callback is told later, from the event loop. So no frame of the
/// socket is on the stack while the callback does what it likes, which may be to delete this object.
class TcpConnection : public QObject, public IInterface
{
    Q_OBJECT

public:
    /// The connection to a caller, connected or already ended. Takes `socket`, whose read buffer must be bounded.
    /// `OnOpen` follows.
    TcpConnection(QTcpSocket* socket, IInterfaceCallback* callback, std::chrono::milliseconds timeOut);
    /// A client, not opened yet. A `timeOut` of 0 is none, as above.
    TcpConnection(const TcpAddress& address, IInterfaceCallback* callback, std::chrono::milliseconds timeOut);
    ~TcpConnection() override;

    /// Bounds what the system's buffer lets through into the socket's; for a socket as soon as it is made.
    static void BoundReadBuffer(QTcpSocket* socket);

    bool Open() override;
    void Close() override;
    bool IsOpen() const override;
    void Write(const char* data, quint64 length) override;
    void Read(char* buffer, quint64* length, bool flag) override;

    /// How long ago the caller was taken in, in milliseconds.
    qint64 Age() const { return m_age.elapsed(); }
    /// Whether the connection has ended; the callback may still have to be told.
    bool IsEnding() const;
    /// Whether the callback knows of the end, and has returned.
    bool HasEnded() const { return m_phase == Phase::Idle && !m_bReporting; }

signals:
    /// `HasEnded`. May come more than once.
    void Ended();

private:
    enum class Phase {
        Idle,    // nothing to report
        Attempt, // a client tries, or a caller's `OnOpen` is still to come
        Open     // `OnOpen` has been reported, `OnClose` has not
    };

    TcpConnection(QTcpSocket* socket, TcpAddress address, IInterfaceCallback* callback,
                  std::chrono::milliseconds timeOut);

    void Connected();
    void Fail(const QString& reason);
    void TimedOut();
    void RestartTimeOut();
    QString PeerName() const;

    /// Has `Report` called by the event loop.
    void Schedule();
    void Report();
    /// Tells the callback the next thing; false when there is none. This object may be gone afterwards.
    bool ReportNext();
    bool HandOver();

    QTcpSocket* const m_pSocket;
    const TcpAddress m_address; // without a port for a caller's connection
    IInterfaceCallback* const m_pCallback;
    QTimer m_timeOut;
    QElapsedTimer m_age;

    Phase m_phase = Phase::Idle;
    bool m_bConnected = false; // noted of the socket, to be reported
    bool m_bFailed = false;    // likewise
    quint64 m_uWritten = 0;    // likewise
    qint64 m_iTaken = 0;       // bytes handed over since the connection was opened
    qint64 m_iWaiting = 0;     // bytes of the present `OnRead` that are still unread
    bool m_bScheduled = false;
    bool m_bReporting = false;
};
