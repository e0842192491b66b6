#pragma once

#include "platform/interfaces.h"
#include "platform/link/tcplisten.h"

#include <QHostAddress>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <memory>
#include <vector>

class QTcpServer;
class TcpConnection;

/// A server of the connections library: listens on the loopback addresses and keeps the peers that called there.
class TcpServerInterface : public QObject, public IInterface
{
    Q_OBJECT

public:
    /// Not listening yet. A `timeOut` of 0 is none.
    TcpServerInterface(quint16 port, IInterfaceCallback* callback, std::chrono::milliseconds timeOut);
    ~TcpServerInterface() override;

    bool Open() override;
    void Close() override;
    bool IsOpen() const override;
    void Write(const char* data, quint64 length) override;
    void Read(char* buffer, quint64* length, bool flag) override;

private:
    Listening Listen(const QHostAddress& address);
    /// Takes in those who wait, as far as there are places.
    void Admit();
    /// Whether there is a place. If not it is made, and those who wait are looked at again when it is there.
    bool HasPlace();
    void ForgetEnded();
    void AcceptFailed();

    const quint16 m_uPort;
    IInterfaceCallback* const m_pCallback;
    const std::chrono::milliseconds m_timeOut;
    QTimer m_placeTimer;
    QTimer m_retryTimer;
    std::vector<std::unique_ptr<QTcpServer>> m_listeners; // who was served last comes last
    std::vector<std::unique_ptr<TcpConnection>> m_peers;  // in the order in which they were taken in
};
