// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "control/controladdress.h"
#include "control/controlline.h"

#include <QJsonObject>
#include <QLocalSocket>
#include <QTemporaryDir>
#include <QTest>

/// The address of a configuration directory of its own, and a runtime folder for the socket.
struct ControlFixture
{
    ControlFixture()
    {
        qputenv("XDG_RUNTIME_DIR", runtime.path().toUtf8());
        address = NewControlAddress(configuration.path());
    }

    QTemporaryDir configuration;
    QTemporaryDir runtime;
    QString address;
};

/// A program that speaks on the channel by itself.
class RawPeer
{
public:
    explicit RawPeer(const QString& address) { m_socket.connectToServer(address); }

    QLocalSocket& Socket() { return m_socket; }
    void Send(const QByteArray& bytes) { m_socket.write(bytes); }
    void Send(const QJsonObject& line) { Send(ControlLine::Write(line)); }

    /// Reads the next line; an empty object if there is none within the time of `QTRY_VERIFY`.
    QJsonObject Next()
    {
        QJsonObject line;
        [&] {
            QTRY_VERIFY(m_socket.canReadLine());
            line = ControlLine::Read(m_socket.readLine()).value_or(QJsonObject());
        }();
        return line;
    }
    QString NextType() { return Next().value(QLatin1String("type")).toString(); }

private:
    QLocalSocket m_socket;
};
