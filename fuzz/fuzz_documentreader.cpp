// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// Feeds any bytes to the connection list reader and compares the result with a simple reader of the token list.

#include "fuzz/entries.h"
#include "fuzz/xmltokens.h"
#include "userinterface/vexelconnectdlg/formats/connectionlist.h"

using namespace Fuzzing;

namespace {

const QString kEntry = QStringLiteral("Connection");

/// The text of the element at `begin`, without that of its child elements.
QString TextOf(const XmlTokens& tokens, std::size_t begin)
{
    QString text;
    const std::size_t end = tokens.EndOf(begin);
    for (std::size_t i = begin + 1; i < end; ++i)
        if (tokens.IsStart(i))
            i = tokens.EndOf(i);
        else if (tokens.list[i].kind == XmlToken::Kind::Text)
            text += tokens.list[i].text;
    return text;
}

/// Stores the element at `begin` in `entry`. Returns false if it is not a field.
bool TakeField(const XmlTokens& tokens, std::size_t begin, Connection& entry)
{
    const QString name = tokens.list[begin].name;
    const QString text = TextOf(tokens, begin);
    const struct
    {
        const char* name;
        QString* text;
        qint32* number;
    } fields[] = {
        {"ConnectionName", &entry.ConnectionName, nullptr}, {"DeviceType", nullptr, &entry.DeviceType},
        {"ConnectionType", nullptr, &entry.ConnectionType}, {"DeviceAddress", &entry.DeviceAddress, nullptr},
        {"DriverAddress", &entry.DriverAddress, nullptr},   {"LinkSpeed", nullptr, &entry.LinkSpeed},
        {"TimeoutSeconds", nullptr, &entry.TimeoutSeconds}, {"ConnectionStatus", nullptr, &entry.ConnectionStatus},
        {"Subsystem", &entry.Subsystem, nullptr},
    };
    if (name == QLatin1String("Selected")) {
        entry.Selected = text == QLatin1String("true");
        return true;
    }
    for (const auto& field : fields) {
        if (name == QLatin1String(field.name)) {
            if (field.text)
                *field.text = text;
            else
                *field.number = text.toInt();
            return true;
        }
    }
    return false;
}

Entries Expected(const XmlTokens& tokens)
{
    Entries entries;
    for (std::size_t i = 0; i < tokens.list.size(); ++i) {
        if (!tokens.IsStart(i, kEntry))
            continue;
        Connection entry;
        for (++i; i < tokens.list.size() && !tokens.IsEnd(i, kEntry); ++i)
            if (tokens.IsStart(i) && TakeField(tokens, i, entry))
                i = tokens.EndOf(i);
        entries.push_back(entry);
    }
    return entries;
}

struct Reading
{
    Entries entries;
    bool result = false;
    QStringList traces;
};

Reading Read(const QByteArray& document)
{
    Reading reading;
    Traces().clear();
    reading.result = ConnectionList::Read(document, [&](const Connection& entry) { reading.entries.push_back(entry); });
    reading.traces = Traces();
    return reading;
}

/// Reads the document and compares what is read with its tokens.
Reading ReadAndCompare(const QByteArray& document, const XmlTokens& tokens)
{
    Reading reading = Read(document);
    Require(IsSame(reading.entries, Expected(tokens)), "the entries are those of the document");
    Require(reading.result == (!tokens.hasError && !reading.entries.empty()),
            "the result is true if there are entries and no error");
    Require(reading.traces.size() == (tokens.hasError ? 1 : 0), "one trace for an error, otherwise none");
    Require(reading.traces.isEmpty() ||
                reading.traces.first().startsWith(QLatin1String("XML parsing error occurred in row ")),
            "the trace contains the position");
    return reading;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Tidy tidy;
    const QByteArray document = ToBytes(data, size);
    const XmlTokens tokens = TokensOf(document);
    const Reading reading = ReadAndCompare(document, tokens);

    // All texts come from the document, except the default name.
    qsizetype texts = 0;
    for (const Connection& entry : reading.entries) {
        texts += entry.ConnectionName.size() + entry.DeviceAddress.size() + entry.DriverAddress.size() +
                 entry.Subsystem.size() - Connection().ConnectionName.size();
    }
    Require(texts <= document.size(), "the texts are no longer than the document");

    // A truncated document has the entries before the cut. (Qt reads nothing of a document with an encoding error.)
    if (!tokens.hasError) {
        const Entries cut = Read(document.first(document.size() / 2)).entries;
        Require(cut.size() <= reading.entries.size(), "half a document has no more entries");
        for (std::size_t i = 0; i + 1 < cut.size(); ++i)
            Require(IsSame(cut[i], reading.entries[i]), "half a document has the same entries");
    }

    // What was read can be written and read again.
    std::vector<const Connection*> pointers;
    for (const Connection& entry : reading.entries)
        pointers.push_back(&entry);
    QByteArray written = ConnectionList::Write(pointers);
    const Reading again = Read(written);
    Require(IsSame(again.entries, WithoutUnwritable(reading.entries)), "what is written is read back");

    // Such a document has a reader of its own, which must notice every other byte.
    if (document.size() >= 3) {
        const auto at = static_cast<unsigned char>(document[0]) * 256 + static_cast<unsigned char>(document[1]);
        written[at % written.size()] = document.back();
        ReadAndCompare(written, TokensOf(written));
    }
    return 0;
}
