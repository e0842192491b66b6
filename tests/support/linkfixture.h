// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/interfaces.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QHostAddress>
#include <QList>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include <algorithm>
#include <functional>
#include <memory>

/// Records all events and reads received data, unless a hook handles them.
class RecordingCallback : public IInterfaceCallback
{
public:
    enum Kind { Open, Close, Read, Error, Written };
    struct Event
    {
        Kind kind;
        IInterface* source;
        quint64 length;
    };

    void OnOpen(IInterface* pInterface) override
    {
        events.append({Open, pInterface, 0});
        most = std::max(most, ++now);
        if (onOpen)
            onOpen(pInterface);
    }
    void OnClose(IInterface* pInterface) override
    {
        events.append({Close, pInterface, 0});
        --now;
        if (onClose)
            onClose(pInterface);
    }
    void OnRead(IInterface* pInterface, quint64 length) override
    {
        events.append({Read, pInterface, length});
        if (onRead)
            onRead(pInterface, length);
        else
            received += Take(pInterface, length);
    }
    void OnError(IInterface* pInterface) override
    {
        events.append({Error, pInterface, 0});
        if (onError)
            onError(pInterface);
    }
    void OnWritten(IInterface* pInterface, quint64 length) override
    {
        events.append({Written, pInterface, length});
        if (onWritten)
            onWritten(pInterface);
    }

    static QByteArray Take(IInterface* source, quint64 length, bool flag = false)
    {
        QByteArray bytes(static_cast<qsizetype>(length), '\0');
        source->Read(bytes.data(), &length, flag);
        bytes.truncate(static_cast<qsizetype>(length));
        return bytes;
    }

    qsizetype Count(Kind kind) const
    {
        return std::count_if(
            events.cbegin(), events.cend(), [kind](const Event& event) { return event.kind == kind; });
    }
    /// The bytes of all events of the kind.
    quint64 Length(Kind kind) const
    {
        quint64 sum = 0;
        for (const Event& event : events)
            if (event.kind == kind)
                sum += event.length;
        return sum;
    }
    /// The kinds in order, repeated ones once.
    QList<Kind> Kinds() const
    {
        QList<Kind> kinds;
        for (const Event& event : events)
            if (kinds.isEmpty() || kinds.constLast() != event.kind)
                kinds.append(event.kind);
        return kinds;
    }

    QList<Event> events;
    QByteArray received;
    int now = 0;  // open at present
    int most = 0; // open at once, at most
    std::function<void(IInterface*)> onOpen;
    std::function<void(IInterface*)> onClose;
    std::function<void(IInterface*, quint64)> onRead;
    std::function<void(IInterface*)> onError;
    std::function<void(IInterface*)> onWritten;
};

inline bool HasIPv6()
{
    QTcpServer probe;
    return probe.listen(QHostAddress(QHostAddress::LocalHostIPv6));
}

/// A port that is free on both loopback addresses.
inline quint16 FreePort()
{
    for (;;) {
        QTcpServer four;
        if (!four.listen(QHostAddress(QHostAddress::LocalHost)))
            qFatal("No port to be had: %s", qPrintable(four.errorString()));
        QTcpServer six;
        if (!HasIPv6() || six.listen(QHostAddress(QHostAddress::LocalHostIPv6), four.serverPort()))
            return four.serverPort();
    }
}

inline std::unique_ptr<IInterface> Create(const QString& address, IInterfaceCallback& callback, quint64 number = 0,
                                          bool flag = false)
{
    return std::unique_ptr<IInterface>(CInterfaceCreator().CreateInterface(address, &callback, number, flag));
}

/// A server with its callback, listening on a port that was free.
class TestServer
{
public:
    explicit TestServer(quint64 number = 0)
    {
        // Another process may take the port first.
        for (int attempt = 0; !server && attempt < 10; ++attempt) {
            port = FreePort();
            server = Create(QStringLiteral("TCP::%1").arg(port), callback, number);
        }
        if (!server)
            qFatal("No server");
    }

    QString ClientAddress(const QString& host = QStringLiteral("127.0.0.1")) const
    {
        return QStringLiteral("TCP:%1:%2").arg(host).arg(port);
    }

    quint16 port = 0;
    RecordingCallback callback;
    std::unique_ptr<IInterface> server;
};

/// A socket that begins to connect.
class Caller : public QTcpSocket
{
public:
    explicit Caller(quint16 port, const QHostAddress& address = QHostAddress(QHostAddress::LocalHost))
    {
        connectToHost(address, port);
    }
};

/// The same on the heap.
inline std::unique_ptr<QTcpSocket> CallerOf(quint16 port,
                                            const QHostAddress& address = QHostAddress(QHostAddress::LocalHost))
{
    return std::make_unique<Caller>(port, address);
}

/// Runs the event loop until `condition` is true, and checks it after every event. Faster than QTest::qWaitFor, for
/// tests that wait thousands of times.
template <typename Condition>
bool WaitUntil(Condition condition)
{
    QDeadlineTimer deadline(20'000);
    QTimer alarm;
    alarm.start(100);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}
