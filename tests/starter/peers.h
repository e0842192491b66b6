// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "tests/support/linkfixture.h"

#include <QEventLoop>
#include <QScopeGuard>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>

#include <functional>
#include <future>
#include <optional>

/// Runs `work`, which blocks, in another thread, while this thread runs its event loop. Returns the result of `work`.
template <typename Work>
auto Beside(Work work)
{
    QEventLoop loop;
    auto result = std::async(
        std::launch::async,
        [&] {
            const auto finish =
                qScopeGuard([&] { QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection); });
            return work();
        });
    QTimer::singleShot(std::chrono::seconds(60), &loop, [] { qFatal("It blocks for ever"); });
    loop.exec();
    return result.get();
}

/// A service that has nothing to do with the product.
class ForeignService : public QTcpServer
{
public:
    enum Manner {
        Greets,      // speaks first, as a mail server
        Echoes,      // gives back what it is sent
        Answers,     // a web server: speaks when it has heard something
        NeverCloses, // takes the call and does nothing
        ClosesLate,  // hears to the end, and then closes without a word
        CutsOff,     // closes without hearing: what it was sent comes back as a reset
    };

    explicit ForeignService(Manner manner, QHostAddress::SpecialAddress address = QHostAddress::LocalHost)
    {
        connect(this, &QTcpServer::newConnection, this, [this, manner] {
            ++calls;
            QTcpSocket* const socket = nextPendingConnection();
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            // Once the caller has sent something: only unread bytes make it a reset.
            if (manner == CutsOff) {
                socket->setReadBufferSize(1);
                connect(socket, &QTcpSocket::readyRead, socket, &QAbstractSocket::abort);
            }
            if (manner == Greets)
                socket->write("220 at your service\r\n");
            if (manner == Echoes)
                connect(socket, &QTcpSocket::readyRead, socket, [socket] { socket->write(socket->readAll()); });
            if (manner == Answers)
                connect(socket, &QTcpSocket::readyRead, socket, [socket] {
                    if (socket->canReadLine())
                        socket->write("HTTP/1.1 400 Bad Request\r\nConnection: close\r\n\r\n");
                });
            // Qt closes its side by itself when the other has; only one that does not look does not notice.
            if (manner == NeverCloses)
                socket->setReadBufferSize(1);
        });
        if (!listen(QHostAddress(address)))
            qFatal("No service: %s", qPrintable(errorString()));
    }

    int calls = 0;
};
