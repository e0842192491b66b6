// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QObject>
#include <QString>

/// A request on the control channel.
struct ControlRequest
{
    QJsonObject content; ///< its line, with "command" and the arguments
    QByteArray document; ///< the text that followed, of "import" and "add"

    QString Command() const { return content.value(QLatin1String("command")).toString(); }
};

/// Takes the answer to a request. Work that goes on, such as waiting, belongs to this object: it is deleted when nobody
/// waits for the answer any more.
class ControlReply : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Sends one line, with "type".
    virtual void Send(const QJsonObject& line) = 0;
    /// Sends complete lines, see `ControlLine`.
    virtual void SendLines(const QByteArray& lines) = 0;
    /// Sends the last line: the exit code of the command, and why it failed. Nothing may be sent afterwards.
    virtual void End(int code, const QString& error = {}) = 0;
};
