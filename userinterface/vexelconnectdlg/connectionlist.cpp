#include "userinterface/vexelconnectdlg/connectionlist.h"

#include "userinterface/vexelconnectdlg/tracing.h"
#include "userinterface/vexelconnectdlg/xmlguard.h"

#include <QDomDocument>
#include <QXmlStreamReader>

#include <algorithm>

namespace {

const QString s_rootElement = QStringLiteral("ConnectionEntries");
const QString s_entryElement = QStringLiteral("Connection");

// The place that the product's trace analysis knows the message by.
constexpr const char* s_traceSource = "userinterface/vexelconnectdlg/connectionsmodel";
constexpr quint16 s_xmlErrorLine = 612;

bool IsXmlCharacter(char16_t unit)
{
    return unit >= 0x20 ? unit < 0xFFFE : unit == u'\t' || unit == u'\n' || unit == u'\r';
}

/// `text` without what no XML document can hold.
QString WithoutUnwritable(const QString& text)
{
    // Hardly any text has a part that needs a second look.
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
        m_Document.appendChild(m_Document.createProcessingInstruction(
            QStringLiteral("xml"), QStringLiteral("version=\"1.0\" encoding=\"utf-8\"")));
        QDomElement root = m_Document.createElement(s_rootElement);
        m_Document.appendChild(root);
        for (const Connection* entry : entries)
            root.appendChild(EntryElement(*entry));
        return m_Document.toByteArray(2);
    }

private:
    QDomElement EntryElement(const Connection& entry)
    {
        QDomElement element = m_Document.createElement(s_entryElement);
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
        QDomElement element = m_Document.createElement(name);
        element.appendChild(m_Document.createTextNode(value));
        parent.appendChild(element);
    }

    void AppendNumber(QDomElement& parent, const QString& name, int value)
    {
        AppendPlain(parent, name, QString::number(value));
    }

    /// One CDATA section, but for the two things a section cannot hold: its own end marker is split over two sections,
    /// and a carriage return, which every reader would take for a line feed, stands between sections as a reference.
    void AppendText(QDomElement& parent, const QString& name, const QString& value)
    {
        const QString text = WithoutUnwritable(value);
        QDomElement element = m_Document.createElement(name);
        qsizetype begin = 0;
        for (qsizetype i = 0; i < text.size(); ++i) {
            if (text.at(i) == u'\r') {
                AppendSection(element, text.mid(begin, i - begin));
                element.appendChild(m_Document.createTextNode(QStringLiteral("\r")));
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
        parent.appendChild(m_Document.createCDATASection(text));
    }

    QDomDocument m_Document;
};

class Reader
{
public:
    Reader(const QByteArray& document, const ConnectionList::Consumer& consumer)
        : m_Xml(document)
        , m_Consumer(consumer)
    {
    }

    bool Read()
    {
        bool anyEntry = false;
        while (!m_Xml.atEnd()) {
            ReadNext();
            if (m_Xml.isStartElement() && m_Xml.name() == s_entryElement) {
                anyEntry = true;
                ReadEntry();
            }
        }
        if (m_Xml.hasError()) {
            TraceError();
            return false;
        }
        return anyEntry;
    }

private:
    void ReadNext()
    {
        m_Xml.readNext();
        RefuseEntityDeclarations(m_Xml);
    }

    void ReadEntry()
    {
        Connection entry;
        while (!m_Xml.atEnd()) {
            ReadNext();
            if (m_Xml.isEndElement() && m_Xml.name() == s_entryElement)
                break;
            if (m_Xml.isStartElement())
                ReadField(entry);
        }
        m_Consumer(entry);
    }

    void ReadField(Connection& entry)
    {
        const QStringView name = m_Xml.name();
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

    /// The text of the element that has just begun. An element inside it is unknown there, and unknown elements are no
    /// errors. Qt's own reading of a text would not look at what comes between: this reader takes a document type
    /// anywhere.
    QString ReadText()
    {
        QString text;
        int depth = 0; // of unknown elements
        while (!m_Xml.atEnd()) {
            ReadNext();
            if (m_Xml.isStartElement())
                ++depth;
            else if (m_Xml.isEndElement() && --depth < 0)
                break;
            else if (depth == 0 && (m_Xml.isCharacters() || m_Xml.isEntityReference()))
                text += m_Xml.text();
        }
        return text;
    }

    int ReadNumber() { return ReadText().toInt(); }

    void TraceError() const
    {
        Trace(s_traceSource, s_xmlErrorLine, [this] {
            return QStringLiteral("XML parsing error occurred in row %1 column %2. \"%3\"")
                .arg(QString::number(m_Xml.lineNumber()), QString::number(m_Xml.columnNumber()), m_Xml.errorString());
        });
    }

    QXmlStreamReader m_Xml;
    const ConnectionList::Consumer& m_Consumer;
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
