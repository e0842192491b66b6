// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/boundedxmlreader.h"

#include <QRegularExpression>
#include <QStringDecoder>

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

/// Finds the markup that Qt's reader takes long for, by one pass over the text.
///
/// Up to the first error it splits the text exactly as Qt's reader does, so nothing can be hidden from it. What it
/// finds behind an error does not matter, because Qt's reader stops there.
class Scanner
{
public:
    Scanner(QStringView text, const XmlLimits& limits)
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
        const QStringView markup = m_text.sliced(m_at++);
        if (markup.startsWith(u"</"))
            ReadEndTag();
        else if (markup.startsWith(u"<?"))
            SkipNode(u"?>");
        else if (markup.startsWith(u"<!--"))
            SkipNode(u"-->", 3);
        else if (markup.startsWith(u"<![CDATA["))
            SkipBehind(u"]]>");
        else if (markup.startsWith(u"<!DOCTYPE"))
            ReadDocumentType();
        else
            ReadStartTag();
    }

    void SkipBehind(QStringView token)
    {
        const qsizetype begin = m_text.indexOf(token, m_at);
        m_at = begin < 0 ? m_text.size() : begin + token.size();
    }

    /// Skips a comment or a processing instruction, whose end is at least `distance` behind.
    void SkipNode(QStringView end, qsizetype distance = 1)
    {
        m_at += distance;
        SkipBehind(end);
        CountNodes(1);
    }

    void SkipText()
    {
        const qsizetype begin = m_at;
        const qsizetype markup = m_text.indexOf(u'<', m_at);
        m_at = markup < 0 ? m_text.size() : markup;
        CountReferences(begin);
    }

    void SkipValue(QChar quote)
    {
        const qsizetype begin = m_at;
        SkipBehind(QStringView(&quote, 1));
        CountReferences(begin);
    }

    void CountReferences(qsizetype begin)
    {
        m_references += m_text.sliced(begin, m_at - begin).count(u'&');
        RefuseIf(m_references > m_limits.references, "it has more than %1 references", m_limits.references);
    }

    void ReadDocumentType()
    {
        CountNodes(1);
        while (!AtEnd()) {
            const QChar unit = m_text.at(m_at++);
            if (unit == u'>')
                return;
            if (unit == u'"' || unit == u'\'')
                SkipBehind(QStringView(&unit, 1));
            else if (unit == u'[')
                return RefuseIf(true, "its document type has an internal subset");
        }
    }

    void ReadEndTag()
    {
        --m_depth;
        SkipBehind(u">");
    }

    void ReadStartTag()
    {
        int attributes = 0;
        bool isEmpty = false;
        for (bool isOpen = true; isOpen && !AtEnd();) {
            const QChar unit = m_text.at(m_at++);
            isOpen = unit != u'>';
            isEmpty = !isOpen && m_text.at(m_at - 2) == u'/';
            if (unit == u'"' || unit == u'\'')
                SkipValue(unit);
            else if (unit == u'=')
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
        const qsizetype line = m_text.first(m_at).count(u'\n') + 1;
        m_refusal = QStringLiteral("The document is refused in line %1: %2.").arg(line).arg(text);
    }

    const QStringView m_text;
    const XmlLimits m_limits;
    qsizetype m_at = 0;
    qsizetype m_depth = 0;
    qsizetype m_nodes = 0;
    qsizetype m_references = 0;
    QString m_refusal;
};

} // namespace

BoundedXmlReader::BoundedXmlReader(const QByteArray& document, const XmlLimits& limits)
    : BoundedXmlReader(Decode(document, limits))
{
}

BoundedXmlReader::BoundedXmlReader(const Text& text)
    : QXmlStreamReader(text.text)
{
    setNamespaceProcessing(false);
    setEntityExpansionLimit(0);
    if (!text.refusal.isEmpty())
        raiseError(text.refusal);
}

/// Qt's reader gets the text, not the bytes: with the bytes it could decode them differently from what was checked.
BoundedXmlReader::Text BoundedXmlReader::Decode(const QByteArray& document, const XmlLimits& limits)
{
    QStringDecoder decoder(QStringConverter::encodingForData(document, u'<').value_or(QStringConverter::Utf8));
    if (const QByteArray name = DeclaredEncoding(document); !name.isEmpty())
        decoder = QStringDecoder(name.constData());
    if (!decoder.isValid())
        return {{}, QStringLiteral("The encoding that the document declares is not supported.")};
    QString text = decoder(document);
    if (decoder.hasError())
        return {{}, QStringLiteral("The document has bytes that its encoding does not allow.")};
    if (QString refusal = Scanner(text, limits).Refusal(); !refusal.isEmpty())
        return {{}, refusal};
    return {text, {}};
}
