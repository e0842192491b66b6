// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QTcpSocket>

#include <algorithm>

/// A caller that sends `total` bytes, as fast as they are read.
class Flood
{
public:
    Flood(quint16 port, qint64 total)
        : m_iLeft(total)
    {
        QObject::connect(&socket, &QTcpSocket::connected, &socket, [this] { Send(); });
        QObject::connect(&socket, &QTcpSocket::bytesWritten, &socket, [this](qint64 bytes) {
            m_iTaken += bytes;
            Send();
        });
        socket.connectToHost(QHostAddress::LocalHost, port);
    }

    /// Bytes not yet handed to the system.
    qint64 Unsent() const { return m_iLeft + socket.bytesToWrite(); }

    /// Bytes handed to the system.
    qint64 Taken() const { return m_iTaken; }

    QTcpSocket socket;

private:
    void Send()
    {
        constexpr qint64 block = 1024LL * 1024;
        if (socket.bytesToWrite() == 0 && m_iLeft > 0)
            m_iLeft -= socket.write(QByteArray(static_cast<qsizetype>(std::min(m_iLeft, block)), 'x'));
    }

    qint64 m_iLeft;
    qint64 m_iTaken = 0;
};
