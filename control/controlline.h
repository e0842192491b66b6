// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <chrono>
#include <optional>

/// The lines of the control channel: each is a JSON object in UTF-8 that ends with a line feed. See docs/control.md.
namespace ControlLine {

/// The version of the protocol. Both sides name theirs in their first line.
inline constexpr int kProtocol = 1;
/// The most bytes of a line. A longer one ends the connection.
inline constexpr qsizetype kMaximumSize = qsizetype{1024} * 1024;
/// How long one side waits for the other to send or to read something.
inline constexpr std::chrono::seconds kPatience{10};

QByteArray Write(const QJsonObject& line);

/// Returns the object of a line; none if it is not one, or has more than 64 KiB outside of texts.
std::optional<QJsonObject> Read(const QByteArray& line);

/// Returns lines that hold `bytes` in parts, each as `fields` with the part in base64 under "base64".
QByteArray WriteParts(const QByteArray& bytes, QJsonObject fields);
/// Same, with parts of a text under "text".
QByteArray WriteParts(const QString& text, QJsonObject fields);

} // namespace ControlLine
