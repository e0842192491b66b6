// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/formats/boundedxmlreader.h"

#include <QRegularExpression>
#include <QStringDecoder>
#include <QUtf8StringView>

namespace {

/// Bytes within which an XML declaration is looked for.
constexpr qsizetype kLongestDeclaration = 1000;

/// Returns the encoding that the XML declaration names; empty if it names none.
QByteArray DeclaredEncoding(const QByteArray& document)
{
    static const QRegularExpression kEncoding(
        QStringLiteral("^<\\?xml\\s[^>]*?\\bencoding\\s*=\\s*[\"']([A-Za-z][A-Za-z0-9._-]*)[\"']"));
    return kEncoding.match(QString::fromLatin1(document.left(kLongestDeclaration))).captured(1).toLatin1();
}

/// Returns whether the document begins with the declaration of UTF-8 that `ConnectionList` writes, and is UTF-8.
bool IsPlainUtf8(const QByteArray& document)
{
    constexpr QByteArrayView kDeclaration(R"(<?xml version="1.0" encoding="utf-8"?>)");
    return document.startsWith(kDeclaration) && QUtf8StringView(document).isValidUtf8();
}

/// Finds the markup that Qt's reader takes long for, by one pass over the text, which is UTF-8.
///
/// Up to the first error it splits the text exactly as Qt's reader does, so nothing can be hidden from it. What it
/// finds behind an error does not matter, because Qt's reader stops there.
class Scanner
{
public:
    Scanner(QByteArrayView text, const XmlLimits& limits)
        : m_text(text)
        , m_limits(limits)
    {
    }

    /// Returns why the text is refused; empty if it is not.
    QString Refusal()
    {
        while (m_refusal.isEmpty()) {
            SkipText();
            if (AtEnd())
                break;
            ReadMarkup();
        }
        return m_refusal;
    }

private:
    bool AtEnd() const { return m_at >= m_text.size(); }

    /// Reads from "<" up to the ">" that belongs to it.
    void ReadMarkup()
    {
        const QByteArrayView markup = m_text.sliced(m_at++);
        if (markup.startsWith("</"))
            ReadEndTag();
        else if (markup.startsWith("<?"))
            SkipNode("?>");
        else if (markup.startsWith("<!--"))
            SkipNode("-->", 3);
        else if (markup.startsWith("<![CDATA["))
            SkipBehind("]]>");
        else if (markup.startsWith("<!DOCTYPE"))
            ReadDocumentType();
        else
            ReadStartTag();
    }

    void SkipBehind(QByteArrayView token)
    {
        const qsizetype begin = m_text.indexOf(token, m_at);
        m_at = begin < 0 ? m_text.size() : begin + token.size();
    }

    /// Skips a comment or a processing instruction, whose end is at least `distance` behind.
    void SkipNode(QByteArrayView end, qsizetype distance = 1)
    {
        m_at += distance;
        SkipBehind(end);
        CountNodes(1);
    }

    void SkipText()
    {
        const qsizetype begin = m_at;
        const qsizetype markup = m_text.indexOf('<', m_at);
        m_at = markup < 0 ? m_text.size() : markup;
        CountReferences(begin);
    }

    void SkipValue(char quote)
    {
        const qsizetype begin = m_at;
        SkipBehind(QByteArrayView(&quote, 1));
        CountReferences(begin);
    }

    void CountReferences(qsizetype begin)
    {
        m_references += m_text.sliced(begin, m_at - begin).count('&');
        RefuseIf(m_references > m_limits.references, "it has more than %1 references", m_limits.references);
    }

    void ReadDocumentType()
    {
        CountNodes(1);
        while (!AtEnd()) {
            const char unit = m_text.at(m_at++);
            if (unit == '>')
                return;
            if (unit == '"' || unit == '\'')
                SkipBehind(QByteArrayView(&unit, 1));
            else if (unit == '[')
                return RefuseIf(true, "its document type has an internal subset");
        }
    }

    void ReadEndTag()
    {
        --m_depth;
        SkipBehind(">");
    }

    void ReadStartTag()
    {
        int attributes = 0;
        bool isEmpty = false;
        for (bool isOpen = true; isOpen && !AtEnd();) {
            const char unit = m_text.at(m_at++);
            isOpen = unit != '>';
            isEmpty = !isOpen && m_text.at(m_at - 2) == '/';
            if (unit == '"' || unit == '\'')
                SkipValue(unit);
            else if (unit == '=')
                ++attributes;
        }
        ++m_depth;
        CountNodes(1 + attributes);
        RefuseIf(m_depth > m_limits.depth, "more than %1 elements are inside one another", m_limits.depth);
        RefuseIf(attributes > m_limits.attributes, "an element has more than %1 attributes", m_limits.attributes);
        if (isEmpty)
            --m_depth;
    }

    void CountNodes(int count)
    {
        m_nodes += count;
        RefuseIf(m_nodes > m_limits.nodes, "it has more than %1 elements, attributes, comments and instructions",
                 m_limits.nodes);
    }

    void RefuseIf(bool isTooMuch, const char* reason, int limit = 0)
    {
        if (!isTooMuch || !m_refusal.isEmpty())
            return;
        QString text = QLatin1String(reason);
        text.replace(QLatin1String("%1"), QString::number(limit));
        const qsizetype line = m_text.first(m_at).count('\n') + 1;
        m_refusal = QStringLiteral("The document is refused in line %1: %2.").arg(line).arg(text);
    }

    const QByteArrayView m_text;
    const XmlLimits m_limits;
    qsizetype m_at = 0;
    qsizetype m_depth = 0;
    qsizetype m_nodes = 0;
    qsizetype m_references = 0;
    QString m_refusal;
};

} // namespace

BoundedXmlReader::BoundedXmlReader(const QByteArray& document, const XmlLimits& limits)
    : BoundedXmlReader(Check(document, limits))
{
}

BoundedXmlReader::BoundedXmlReader(const Source& source)
    : QXmlStreamReader(source.text)
{
    if (!source.utf8.isEmpty()) {
        m_utf8.setData(source.utf8);
        m_utf8.open(QIODevice::ReadOnly);
        setDevice(&m_utf8);
    }
    setNamespaceProcessing(false);
    setEntityExpansionLimit(0);
    if (!source.refusal.isEmpty())
        raiseError(source.refusal);
}

BoundedXmlReader::Source BoundedXmlReader::Check(const QByteArray& document, const XmlLimits& limits)
{
    // Of these, Qt's reader decodes a small part at a time, which takes less memory and time.
    if (IsPlainUtf8(document))
        return {{}, document, Scanner(document, limits).Refusal()};
    // Of all others it gets the text: with the bytes it could decode them differently from what was checked.
    QStringDecoder decoder(QStringConverter::encodingForData(document, u'<').value_or(QStringConverter::Utf8));
    if (const QByteArray name = DeclaredEncoding(document); !name.isEmpty())
        decoder = QStringDecoder(name.constData());
    if (!decoder.isValid())
        return {{}, {}, QStringLiteral("The encoding that the document declares is not supported.")};
    const QString text = decoder(document);
    if (decoder.hasError())
        return {{}, {}, QStringLiteral("The document has bytes that its encoding does not allow.")};
    return {text, {}, Scanner(text.toUtf8(), limits).Refusal()};
}
