#include "userinterface/vexelconnectdlg/connectionlist.h"

#include "platform/tracing.h"
#include "userinterface/vexelconnectdlg/xmlguard.h"

#include <QDomDocument>
#include <QXmlStreamReader>

#include <algorithm>

namespace {

const QString kRootElement = QStringLiteral("ConnectionEntries");
const QString kEntryElement = QStringLiteral("Connection");

// The fixed source location of the trace, by which the product's trace analysis identifies it.
constexpr const char* kTraceSource = "userinterface/vexelconnectdlg/connectionsmodel";
constexpr quint16 kXmlErrorLine = 612;

bool IsXmlCharacter(char16_t unit)
{
    return unit >= 0x20 ? unit < 0xFFFE : unit == u'\t' || unit == u'\n' || unit == u'\r';
}

/// Returns `text` without the characters that XML does not allow.
QString RemoveInvalidXmlCharacters(const QString& text)
{
    // Fast path for nearly all texts.
    if (std::all_of(text.cbegin(), text.cend(),
                    [](QChar unit) { return !unit.isSurrogate() && IsXmlCharacter(unit.unicode()); }))
        return text;
    QString writable;
    writable.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar unit = text.at(i);
        if (unit.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
            writable += unit;
            writable += text.at(++i);
        } else if (!unit.isSurrogate() && IsXmlCharacter(unit.unicode())) {
            writable += unit;
        }
    }
    return writable;
}

class Writer
{
public:
    QByteArray Write(const std::vector<const Connection*>& entries)
    {
        m_document.appendChild(m_document.createProcessingInstruction(
            QStringLiteral("xml"), QStringLiteral("version=\"1.0\" encoding=\"utf-8\"")));
        QDomElement root = m_document.createElement(kRootElement);
        m_document.appendChild(root);
        for (const Connection* entry : entries)
            root.appendChild(EntryElement(*entry));
        return m_document.toByteArray(2);
    }

private:
    QDomElement EntryElement(const Connection& entry)
    {
        QDomElement element = m_document.createElement(kEntryElement);
        AppendText(element, QStringLiteral("ConnectionName"), entry.ConnectionName);
        AppendNumber(element, QStringLiteral("DeviceType"), entry.DeviceType);
        AppendNumber(element, QStringLiteral("ConnectionType"), entry.ConnectionType);
        AppendText(element, QStringLiteral("DeviceAddress"), entry.DeviceAddress);
        AppendText(element, QStringLiteral("DriverAddress"), entry.DriverAddress);
        AppendNumber(element, QStringLiteral("LinkSpeed"), entry.LinkSpeed);
        AppendNumber(element, QStringLiteral("TimeoutSeconds"), entry.TimeoutSeconds);
        AppendNumber(element, QStringLiteral("ConnectionStatus"), entry.ConnectionStatus);
        AppendPlain(element, QStringLiteral("Selected"),
                    entry.Selected ? QStringLiteral("true") : QStringLiteral("false"));
        AppendText(element, QStringLiteral("Subsystem"), entry.Subsystem);
        return element;
    }

    void AppendPlain(QDomElement& parent, const QString& name, const QString& value)
    {
        QDomElement element = m_document.createElement(name);
        element.appendChild(m_document.createTextNode(value));
        parent.appendChild(element);
    }

    void AppendNumber(QDomElement& parent, const QString& name, int value)
    {
        AppendPlain(parent, name, QString::number(value));
    }

    /// Appends the text as one CDATA section, with two exceptions: the end marker "]]>" is split over two sections, and
    /// a carriage return, which readers would turn into a line feed, becomes a character reference between two
    /// sections.
    void AppendText(QDomElement& parent, const QString& name, const QString& value)
    {
        const QString text = RemoveInvalidXmlCharacters(value);
        QDomElement element = m_document.createElement(name);
        qsizetype begin = 0;
        for (qsizetype i = 0; i < text.size(); ++i) {
            if (text.at(i) == u'\r') {
                AppendSection(element, text.mid(begin, i - begin));
                element.appendChild(m_document.createTextNode(QStringLiteral("\r")));
                begin = i + 1;
            } else if (text.at(i) == u'>' && i - begin >= 2 && text.at(i - 1) == u']' && text.at(i - 2) == u']') {
                AppendSection(element, text.mid(begin, i - begin));
                begin = i;
            }
        }
        AppendSection(element, text.mid(begin));
        parent.appendChild(element);
    }

    void AppendSection(QDomElement& parent, const QString& text)
    {
        parent.appendChild(m_document.createCDATASection(text));
    }

    QDomDocument m_document;
};

class Reader
{
public:
    Reader(const QByteArray& document, const ConnectionList::Consumer& consumer)
        : m_xml(document)
        , m_consumer(consumer)
    {
    }

    bool Read()
    {
        bool anyEntry = false;
        while (!m_xml.atEnd()) {
            ReadNext();
            if (m_xml.isStartElement() && m_xml.name() == kEntryElement) {
                anyEntry = true;
                ReadEntry();
            }
        }
        if (m_xml.hasError()) {
            TraceError();
            return false;
        }
        return anyEntry;
    }

private:
    void ReadNext()
    {
        m_xml.readNext();
        RefuseEntityDeclarations(m_xml);
    }

    void ReadEntry()
    {
        Connection entry;
        while (!m_xml.atEnd()) {
            ReadNext();
            if (m_xml.isEndElement() && m_xml.name() == kEntryElement)
                break;
            if (m_xml.isStartElement())
                ReadField(entry);
        }
        m_consumer(entry);
    }

    void ReadField(Connection& entry)
    {
        const QStringView name = m_xml.name();
        if (name == QLatin1String("ConnectionName"))
            entry.ConnectionName = ReadText();
        else if (name == QLatin1String("DeviceType"))
            entry.DeviceType = ReadNumber();
        else if (name == QLatin1String("ConnectionType"))
            entry.ConnectionType = ReadNumber();
        else if (name == QLatin1String("DeviceAddress"))
            entry.DeviceAddress = ReadText();
        else if (name == QLatin1String("DriverAddress"))
            entry.DriverAddress = ReadText();
        else if (name == QLatin1String("LinkSpeed"))
            entry.LinkSpeed = ReadNumber();
        else if (name == QLatin1String("TimeoutSeconds"))
            entry.TimeoutSeconds = ReadNumber();
        else if (name == QLatin1String("ConnectionStatus"))
            entry.ConnectionStatus = ReadNumber();
        else if (name == QLatin1String("Selected"))
            entry.Selected = ReadText() == QLatin1String("true");
        else if (name == QLatin1String("Subsystem"))
            entry.Subsystem = ReadText();
    }

    /// Returns the text of the current element, without that of unknown elements inside it, which are not errors. Not
    /// readElementText(): QXmlStreamReader accepts a document type anywhere, and each token must be checked for one.
    QString ReadText()
    {
        QString text;
        int depth = 0; // of unknown elements
        while (!m_xml.atEnd()) {
            ReadNext();
            if (m_xml.isStartElement())
                ++depth;
            else if (m_xml.isEndElement() && --depth < 0)
                break;
            else if (depth == 0 && (m_xml.isCharacters() || m_xml.isEntityReference()))
                text += m_xml.text();
        }
        return text;
    }

    int ReadNumber() { return ReadText().toInt(); }

    void TraceError() const
    {
        Trace(
            kTraceSource, kXmlErrorLine,
            [this] {
                return QStringLiteral("XML parsing error occurred in row %1 column %2. \"%3\"")
                    .arg(QString::number(m_xml.lineNumber()), QString::number(m_xml.columnNumber()),
                         m_xml.errorString());
            });
    }

    QXmlStreamReader m_xml;
    const ConnectionList::Consumer& m_consumer;
};

} // namespace

namespace ConnectionList {

QString MimeType()
{
    return QStringLiteral("text/plain");
}

QByteArray Write(const std::vector<const Connection*>& entries)
{
    return Writer().Write(entries);
}

bool Read(const QByteArray& document, const Consumer& consumer)
{
    return Reader(document, consumer).Read();
}

} // namespace ConnectionList
