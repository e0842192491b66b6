// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/config/documenttext.h"

#include <QCryptographicHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>

#include <algorithm>
#include <cmath>

namespace {

const QString kDigest = QStringLiteral("digest");
const QString kValues = QStringLiteral("values");

DocumentText::Parsed Malformed(const QString& error)
{
    return {std::nullopt, {}, error};
}

DocumentText::Parsed MalformedAt(const QByteArray& text, qsizetype offset, const QString& error)
{
    const qsizetype line = QByteArrayView(text).first(qMin(offset, text.size())).count('\n') + 1;
    return Malformed(QStringLiteral("line %1: %2").arg(line).arg(error));
}

/// JSON escapes control characters inside of texts. Qt's reader accepts them unescaped, such as the zeros that a crash
/// of the system leaves in a file.
bool IsForbidden(char byte)
{
    return byte >= 0 && byte < ' ' && byte != '\n' && byte != '\r' && byte != '\t';
}

/// None for what a text cannot represent exactly, such as a number with more digits than a double has.
std::optional<QString> TextOf(const QJsonValue& value)
{
    constexpr double kLargestExact = 9007199254740992; // 2^53
    if (value.isString())
        return value.toString();
    if (value.isBool())
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    const double number = value.toDouble();
    if (value.isDouble() && std::abs(number) <= kLargestExact && number == std::floor(number))
        return QString::number(static_cast<qint64>(number));
    return std::nullopt;
}

/// BLAKE2b of all keys and values as UTF-16, each followed by a zero.
QString DigestOf(const DocumentText::Values& values)
{
    QCryptographicHash hash(QCryptographicHash::Blake2b_256);
    const auto add = [&hash](const QString& text) { // a QString ends with a zero
        hash.addData(QByteArrayView(reinterpret_cast<const char*>(text.constData()), (text.size() + 1) * 2));
    };
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        add(it.key());
        add(it.value());
    }
    return QString::fromLatin1(hash.result().toHex());
}

} // namespace

DocumentText::Parsed DocumentText::Parse(const QByteArray& text)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError)
        return MalformedAt(text, error.offset, error.errorString());
    // Without an early end, the compiler can check many bytes at once.
    bool isAnyForbidden = false;
    for (const char byte : text)
        isAnyForbidden |= IsForbidden(byte);
    if (isAnyForbidden) {
        const auto at = std::find_if(text.begin(), text.end(), IsForbidden);
        return MalformedAt(text, at - text.begin(), QStringLiteral("control character"));
    }
    const QJsonObject root = document.object();
    if (!root.value(kValues).isObject() || root.size() > (root.contains(kDigest) ? 2 : 1))
        return Malformed(QStringLiteral("it is not an object with the members \"digest\" and \"values\" alone"));

    Values values;
    const QJsonObject members = root.value(kValues).toObject();
    for (auto it = members.begin(); it != members.end(); ++it) {
        const std::optional<QString> value = TextOf(it.value());
        if (!value)
            return Malformed(QStringLiteral("write the value of \"%1\" as a text").arg(it.key().left(80).simplified()));
        values.insert(values.cend(), it.key(), *value);
    }
    return {values, root.value(kDigest).toString(), {}};
}

bool DocumentText::IsIntact(const Values& values, const QString& digest)
{
    return digest == DigestOf(values);
}

QByteArray DocumentText::Write(const Values& values)
{
    QJsonObject object;
    for (auto it = values.cbegin(); it != values.cend(); ++it)
        object.insert(it.key(), it.value());
    QByteArray text = QJsonDocument(QJsonObject{{kDigest, DigestOf(values)}, {kValues, object}})
                          .toJson(QJsonDocument::Indented)
                          .trimmed();
    // Qt's reader takes a U+FEFF at the beginning of a text for a byte order mark and drops it.
    text.replace("\"\xEF\xBB\xBF", "\"\\ufeff");
    return text;
}
