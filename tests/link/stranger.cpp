// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// Connects to a port as often as its arguments say, sends half a line each time, and prints a line when all is sent.
// Exits with 0 when the last connection has ended. Tests kill or stop it.

#include <QCoreApplication>
#include <QTcpSocket>

#include <cstdio>
#include <memory>
#include <vector>

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const quint16 port = arguments.value(1).toUShort();
    const int calls = arguments.value(2).toInt();

    std::vector<std::unique_ptr<QTcpSocket>> sockets;
    int open = calls;
    for (int call = 0; call < calls; ++call) {
        auto& socket = sockets.emplace_back(std::make_unique<QTcpSocket>());
        // So an answer stays unread.
        socket->setReadBufferSize(1);
        socket->connectToHost(QStringLiteral("127.0.0.1"), port);
        socket->write("half a li");
        if (!socket->waitForConnected() || (socket->bytesToWrite() > 0 && !socket->waitForBytesWritten()))
            return 1;
        QObject::connect(socket.get(), &QTcpSocket::disconnected, &application, [&open] {
            if (--open == 0)
                QCoreApplication::exit();
        });
    }
    std::puts("there");
    (void)std::fflush(stdout);
    return QCoreApplication::exec();
}
