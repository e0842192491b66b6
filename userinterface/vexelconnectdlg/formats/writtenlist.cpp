// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/formats/writtenlist.h"

#include "userinterface/vexelconnectdlg/formats/boundedxmlreader.h"

#include <QByteArrayView>
#include <QUtf8StringView>

#include <algorithm>
#include <charconv>
#include <system_error>

namespace {

// An entry has eleven elements, and the list has a root and a declaration.
static_assert(ConnectionList::kRoomForOwnList.entries * 11 + 2 <= XmlLimits{}.nodes);

/// Steps through the document. After the first difference it stays where it is.
class Cursor
{
public:
    explicit Cursor(QByteArrayView document)
        : m_rest(document)
    {
    }

    bool IsFine() const { return m_isFine; }
    bool AtEnd() const { return m_rest.isEmpty(); }

    /// Steps over `text` if it is next.
    bool Take(QByteArrayView text)
    {
        const bool isNext = m_isFine && m_rest.startsWith(text);
        if (isNext)
            m_rest = m_rest.sliced(text.size());
        return isNext;
    }

    void Expect(QByteArrayView text) { Require(Take(text)); }

    /// The content of a CDATA section.
    QByteArrayView Text(QByteArrayView element)
    {
        Open(element);
        Expect("<![CDATA[");
        const QByteArrayView content = Before("]]>");
        Require(IsXmlText(content));
        Expect("]]>");
        Close(element);
        return content;
    }

    qint32 Number(QByteArrayView element)
    {
        Open(element);
        const QByteArrayView digits = Before("<");
        qint32 number = 0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
        Require(error == std::errc() && end == digits.data() + digits.size());
        Close(element);
        return number;
    }

    bool Flag(QByteArrayView element)
    {
        Open(element);
        const bool flag = Take("true");
        if (!flag)
            Expect("false");
        Close(element);
        return flag;
    }

private:
    void Require(bool isFine) { m_isFine = m_isFine && isFine; }

    void Open(QByteArrayView element)
    {
        Expect("    <");
        Expect(element);
        Expect(">");
    }

    void Close(QByteArrayView element)
    {
        Expect("</");
        Expect(element);
        Expect(">\n");
    }

    QByteArrayView Before(QByteArrayView token)
    {
        const qsizetype size = m_isFine ? m_rest.indexOf(token) : -1;
        Require(size >= 0);
        if (!m_isFine)
            return {};
        const QByteArrayView before = m_rest.first(size);
        m_rest = m_rest.sliced(size);
        return before;
    }

    /// Whether an XML reader takes UTF-8 text as it is: no control characters, carriage returns, U+FFFE and U+FFFF.
    /// And no U+FEFF at the beginning, which QString would take for a byte order mark.
    static bool IsXmlText(QByteArrayView text)
    {
        const bool isPlain = std::all_of(
            text.begin(), text.end(), [](char unit) { return unit >= ' ' && unit < '\x7F'; });
        return isPlain || (!text.startsWith("\xEF\xBB\xBF") && !text.contains("\xEF\xBF\xBE") &&
                           !text.contains("\xEF\xBF\xBF") && std::none_of(text.begin(), text.end(), [](char unit) {
                               return unit >= 0 && unit < ' ' && unit != '\t' && unit != '\n';
                           }));
    }

    QByteArrayView m_rest;
    bool m_isFine = true;
};

/// The fields of an entry; texts are still UTF-8.
struct Fields
{
    QByteArrayView name;
    QByteArrayView deviceAddress;
    QByteArrayView driverAddress;
    QByteArrayView subsystem;
    qint32 deviceType = 0;
    qint32 connectionType = 0;
    qint32 linkSpeed = 0;
    qint32 timeoutSeconds = 0;
    qint32 status = 0;
    bool isSelected = false;
};

/// Calls `take` with each entry until something is different. Returns the number of entries; of a document that is
/// different, -1.
template <typename Take>
qint64 ForEachEntry(const QByteArray& document, const Take& take)
{
    Cursor cursor(document);
    cursor.Expect("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<ConnectionEntries>\n");
    qint64 count = 0;
    while (cursor.Take("  <Connection>\n")) {
        Fields fields;
        fields.name = cursor.Text("ConnectionName");
        fields.deviceType = cursor.Number("DeviceType");
        fields.connectionType = cursor.Number("ConnectionType");
        fields.deviceAddress = cursor.Text("DeviceAddress");
        fields.driverAddress = cursor.Text("DriverAddress");
        fields.linkSpeed = cursor.Number("LinkSpeed");
        fields.timeoutSeconds = cursor.Number("TimeoutSeconds");
        fields.status = cursor.Number("ConnectionStatus");
        fields.isSelected = cursor.Flag("Selected");
        fields.subsystem = cursor.Text("Subsystem");
        cursor.Expect("  </Connection>\n");
        if (!cursor.IsFine())
            return -1;
        take(fields);
        ++count;
    }
    cursor.Expect("</ConnectionEntries>\n");
    return cursor.IsFine() && cursor.AtEnd() ? count : -1;
}

} // namespace

bool ReadWrittenList(const QByteArray& document, const ConnectionList::Consumer& consumer,
                     const ConnectionList::Room& room)
{
    if (document.size() > room.bytes || !QUtf8StringView(document).isValidUtf8())
        return false;
    const qint64 count = ForEachEntry(document, [](const Fields& /*fields*/) {});
    if (count < 1 || count > std::min(room.entries, ConnectionList::kRoomForOwnList.entries))
        return false;
    Connection entry;
    ForEachEntry(document, [&](const Fields& fields) {
        entry.ConnectionName = QString::fromUtf8(fields.name);
        entry.DeviceType = fields.deviceType;
        entry.ConnectionType = fields.connectionType;
        entry.DeviceAddress = QString::fromUtf8(fields.deviceAddress);
        entry.DriverAddress = QString::fromUtf8(fields.driverAddress);
        entry.LinkSpeed = fields.linkSpeed;
        entry.TimeoutSeconds = fields.timeoutSeconds;
        entry.ConnectionStatus = fields.status;
        entry.Selected = fields.isSelected;
        entry.Subsystem = QString::fromUtf8(fields.subsystem);
        consumer(entry);
    });
    return true;
}
