// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "userinterface/vexelconnectdlg/formats/boundedxmlreader.h"

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <vector>

/// The tokens of a document as a list. The fuzzers' simple readers access it at random, while the product's readers
/// pull token by token.
namespace Fuzzing {

struct XmlToken
{
    enum class Kind { Start, End, Text, Other };

    Kind kind = Kind::Other;
    QString name; ///< for Start and End
    QString text; ///< for Text
};

struct XmlTokens
{
    std::vector<XmlToken> list; ///< up to the end of the document or the first error
    bool hasError = false;

    bool IsStart(std::size_t i) const { return list[i].kind == XmlToken::Kind::Start; }
    bool IsStart(std::size_t i, QStringView name) const { return IsStart(i) && list[i].name == name; }
    bool IsEnd(std::size_t i) const { return list[i].kind == XmlToken::Kind::End; }
    bool IsEnd(std::size_t i, QStringView name) const { return IsEnd(i) && list[i].name == name; }

    /// The index of the end of the element that starts at `begin`; the list's size if it has no end.
    std::size_t EndOf(std::size_t begin) const
    {
        int depth = 0;
        for (std::size_t i = begin; i < list.size(); ++i)
            if (IsStart(i))
                ++depth;
            else if (IsEnd(i) && --depth == 0)
                return i;
        return list.size();
    }

    /// The indices of the starts of the child elements, in document order.
    std::vector<std::size_t> Children(std::size_t begin) const
    {
        std::vector<std::size_t> children;
        const std::size_t end = EndOf(begin);
        for (std::size_t i = begin + 1; i < end; ++i) {
            if (IsStart(i)) {
                children.push_back(i);
                i = EndOf(i);
            }
        }
        return children;
    }

    /// The text token directly after the start at `begin`.
    QString DirectText(std::size_t begin) const
    {
        const bool isText = begin + 1 < list.size() && list[begin + 1].kind == XmlToken::Kind::Text;
        return isText ? list[begin + 1].text : QString();
    }
};

inline XmlTokens TokensOf(const QByteArray& document)
{
    XmlTokens tokens;
    BoundedXmlReader reader(document);
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            tokens.list.push_back({XmlToken::Kind::Start, reader.name().toString(), {}});
            break;
        case QXmlStreamReader::EndElement:
            tokens.list.push_back({XmlToken::Kind::End, reader.name().toString(), {}});
            break;
        case QXmlStreamReader::Characters:
            tokens.list.push_back({XmlToken::Kind::Text, {}, reader.text().toString()});
            break;
        case QXmlStreamReader::DTD:
        case QXmlStreamReader::Invalid:
            break;
        default:
            tokens.list.push_back({XmlToken::Kind::Other, {}, {}});
            break;
        }
    }
    tokens.hasError = reader.hasError();
    return tokens;
}

} // namespace Fuzzing
