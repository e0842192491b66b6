#include "platform/config/documenttext.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>
#include <QVariant>

#include <algorithm>

namespace {

const QString kValues = QStringLiteral("values");

DocumentText::Parsed Malformed(const QString& error)
{
    return {std::nullopt, error};
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

} // namespace

DocumentText::Parsed DocumentText::Parse(const QByteArray& text)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError)
        return MalformedAt(text, error.offset, error.errorString());
    if (const auto at = std::find_if(text.begin(), text.end(), IsForbidden); at != text.end())
        return MalformedAt(text, at - text.begin(), QStringLiteral("control character"));
    const QJsonValue members = document.object().value(kValues);
    if (!members.isObject())
        return Malformed(QStringLiteral("there is no object \"values\""));

    Values values;
    const QJsonObject object = members.toObject();
    for (auto it = object.begin(); it != object.end(); ++it) {
        const QJsonValue value = it.value();
        if (!value.isString() && !value.isDouble() && !value.isBool())
            return Malformed(QStringLiteral("the value of \"%1\" is not a text").arg(it.key()));
        values.insert(values.cend(), it.key(), value.toVariant().toString());
    }
    return {values, {}};
}

QByteArray DocumentText::Write(const Values& values)
{
    QJsonObject object;
    for (auto it = values.cbegin(); it != values.cend(); ++it)
        object.insert(it.key(), it.value());
    QByteArray text = QJsonDocument(QJsonObject{{kValues, object}}).toJson(QJsonDocument::Indented).trimmed();
    // Qt's reader takes a U+FEFF at the beginning of a text for a byte order mark and drops it.
    text.replace("\"\xEF\xBB\xBF", "\"\\ufeff");
    return text;
}
