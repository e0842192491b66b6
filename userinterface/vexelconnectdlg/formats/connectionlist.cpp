// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/formats/connectionlist.h"

#include "platform/config/documentfile.h"
#include "platform/tracing.h"
#include "userinterface/vexelconnectdlg/formats/boundedxmlreader.h"
#include "userinterface/vexelconnectdlg/formats/writtenlist.h"

#include <QDomDocument>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <span>

namespace {

const QString kRootElement = QStringLiteral("ConnectionEntries");
const QString kEntryElement = QStringLiteral("Connection");

// The fixed source location of the trace, by which the product's trace analysis identifies it.
constexpr const char* kTraceSource = "userinterface/vexelconnectdlg/connectionsmodel";
constexpr quint16 kXmlErrorLine = 612;

// The rest is for editing, and for the other values in the document.
static_assert(2 * ConnectionList::kMaximumSize <= kLargestDocument / 4 * 3);

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
    QByteArray Write(std::span<const Connection* const> entries)
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

/// Returns the bytes that the writer takes for `value`.
qint64 WrittenTextSize(const QString& value)
{
    const QString text = RemoveInvalidXmlCharacters(value);
    qint64 size = 0;
    for (const QChar unit : text)
        if (unit.unicode() < 0x80)
            size += 1;
        else if (unit.unicode() < 0x800 || unit.isSurrogate()) // of a pair, which takes 4
            size += 2;
        else
            size += 3;
    return size + text.count(QLatin1String("]]>")) * QByteArrayView("]]><![CDATA[").size() +
           text.count(u'\r') * (QByteArrayView("]]>&#xd;<![CDATA[").size() - 1);
}

/// The bytes that the writer takes for everything but the values.
struct FixedSizes
{
    qint64 ofEntry = 0;
    qint64 ofList = 0; ///< besides its entries

    static const FixedSizes& Get()
    {
        static const FixedSizes sizes = [] {
            Connection plain;
            plain.ConnectionName.clear();
            const std::array<const Connection*, 2> entries{&plain, &plain};
            const qint64 one = Writer().Write(std::span(entries).first(1)).size();
            const qint64 two = Writer().Write(entries).size();
            const qint64 ofValues = QByteArrayView("40000false").size();
            return FixedSizes{two - one - ofValues, one - (two - one)};
        }();
        return sizes;
    }
};

class Reader
{
public:
    Reader(const QByteArray& document, const ConnectionList::Consumer& consumer, const ConnectionList::Room& room)
        : m_xml(document)
        , m_consumer(consumer)
        , m_room(room)
    {
        m_room.bytes -= FixedSizes::Get().ofList;
    }

    bool Read(ConnectionList::ReadError& error)
    {
        bool anyEntry = false;
        while (!m_xml.atEnd()) {
            m_xml.readNext();
            if (m_xml.isStartElement() && m_xml.name() == kEntryElement) {
                anyEntry = true;
                ReadEntry();
            }
        }
        if (m_xml.hasError()) {
            TraceError();
            error = {m_xml.lineNumber(), m_xml.columnNumber(), m_xml.errorString()};
            return false;
        }
        if (!anyEntry)
            error = {0, 0, QStringLiteral("The list has no entries.")};
        return anyEntry;
    }

private:
    void ReadEntry()
    {
        if (--m_room.entries < 0) {
            m_xml.raiseError(QStringLiteral("The list would have too many entries."));
            return;
        }
        Connection entry;
        while (!m_xml.atEnd()) {
            m_xml.readNext();
            if (m_xml.isEndElement() && m_xml.name() == kEntryElement)
                break;
            if (m_xml.isStartElement())
                ReadField(entry);
        }
        m_room.bytes -= ConnectionList::WrittenSize(entry);
        if (m_room.bytes >= 0)
            m_consumer(entry);
        else if (!m_xml.hasError())
            m_xml.raiseError(QStringLiteral("The list would be too large."));
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

    /// Returns the text of the current element, without that of unknown elements inside it, which are not errors.
    QString ReadText() { return m_xml.readElementText(QXmlStreamReader::SkipChildElements); }

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

    BoundedXmlReader m_xml;
    const ConnectionList::Consumer& m_consumer;
    ConnectionList::Room m_room;
};

} // namespace

namespace ConnectionList {

QString MimeType()
{
    return QStringLiteral("text/plain");
}

QByteArray Write(const std::vector<const Connection*>& entries)
{
    // In parts: the tree of the longest list would take a gigabyte.
    constexpr std::size_t kPartLength = 1000;
    constexpr QByteArrayView kEnd("</ConnectionEntries>\n");
    std::span<const Connection* const> rest(entries);
    QByteArray document = Writer().Write(rest.first(std::min(kPartLength, rest.size())));
    while (rest.size() > kPartLength) {
        rest = rest.subspan(kPartLength);
        const QByteArray part = Writer().Write(rest.first(std::min(kPartLength, rest.size())));
        document.chop(kEnd.size());
        document += QByteArrayView(part).sliced(FixedSizes::Get().ofList - kEnd.size());
    }
    return document;
}

qint64 WrittenSize(const Connection& entry)
{
    qint64 size = FixedSizes::Get().ofEntry;
    for (const QString& text : {entry.ConnectionName, entry.DeviceAddress, entry.DriverAddress, entry.Subsystem})
        size += WrittenTextSize(text);
    for (const int number :
         {entry.DeviceType, entry.ConnectionType, entry.LinkSpeed, entry.TimeoutSeconds, entry.ConnectionStatus})
        size += QString::number(number).size();
    return size + (entry.Selected ? 4 : 5);
}

QString ReadError::Sentence() const
{
    QString sentence = text;
    if (sentence.endsWith(QLatin1Char('.')))
        sentence.chop(1);
    return row > 0
               ? QStringLiteral("row %1, column %2: %3").arg(QString::number(row), QString::number(column), sentence)
               : sentence;
}

bool Read(const QByteArray& document, const Consumer& consumer, const Room& room, ReadError* error)
{
    if (ReadWrittenList(document, consumer, room))
        return true;
    ReadError ignored;
    return Reader(document, consumer, room).Read(error ? *error : ignored);
}

} // namespace ConnectionList
