// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "control/controlline.h"

#include <QJsonDocument>

#include <algorithm>

namespace {

// JSON writes a character of a text in up to six bytes, and base64 three bytes as four.
constexpr qsizetype kTextPart = qsizetype{128} * 1024;
constexpr qsizetype kBytesPart = qsizetype{512} * 1024;

// Reading JSON takes time for each value, and what the channel takes has few of them beside long texts.
constexpr qsizetype kMaximumStructure = qsizetype{64} * 1024;

/// Returns whether `line` has more bytes outside of texts than a line of the channel can have.
bool IsTooComplex(const QByteArray& line)
{
    qsizetype structure = 0;
    bool isInText = false;
    for (auto byte = line.cbegin(); byte != line.cend(); ++byte) {
        if (*byte == '"')
            isInText = !isInText;
        else if (isInText && *byte == '\\' && byte + 1 != line.cend())
            ++byte;
        structure += !isInText || *byte == '"' ? 1 : 0;
    }
    return structure > kMaximumStructure;
}

} // namespace

namespace ControlLine {

QByteArray Write(const QJsonObject& line)
{
    return QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n';
}

std::optional<QJsonObject> Read(const QByteArray& line)
{
    if (IsTooComplex(line))
        return std::nullopt;
    const QJsonDocument document = QJsonDocument::fromJson(line);
    return document.isObject() ? std::optional(document.object()) : std::nullopt;
}

QByteArray WriteParts(const QByteArray& bytes, QJsonObject fields)
{
    QByteArray lines;
    for (qsizetype done = 0; done < bytes.size(); done += kBytesPart) {
        fields.insert(QStringLiteral("base64"), QString::fromLatin1(bytes.mid(done, kBytesPart).toBase64()));
        lines += Write(fields);
    }
    return lines;
}

QByteArray WriteParts(const QString& text, QJsonObject fields)
{
    QByteArray lines;
    for (qsizetype done = 0; done < text.size();) {
        qsizetype part = std::min(text.size() - done, kTextPart);
        // JSON has no halves of characters.
        if (part > 1 && text.at(done + part - 1).isHighSurrogate())
            --part;
        fields.insert(QStringLiteral("text"), text.mid(done, part));
        lines += Write(fields);
        done += part;
    }
    return lines;
}

} // namespace ControlLine
