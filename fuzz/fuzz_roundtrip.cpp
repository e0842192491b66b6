// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// Writes any entries and reads them again, directly and through the model.

#include "fuzz/entries.h"
#include "userinterface/vexelconnectdlg/formats/connectionlist.h"

using namespace Fuzzing;

namespace {

Entries TakeEntries(FuzzedDataProvider& input)
{
    constexpr std::size_t kMostEntries = 8;
    constexpr std::size_t kLongestText = 200;
    Entries entries;
    while (input.remaining_bytes() > 0 && entries.size() < kMostEntries) {
        Connection& entry = entries.emplace_back();
        entry.ConnectionName = TakeText(input, kLongestText);
        entry.DeviceAddress = TakeText(input, kLongestText);
        entry.DriverAddress = TakeText(input, kLongestText);
        entry.Subsystem = TakeText(input, kLongestText);
        for (qint32* const number : {&entry.DeviceType, &entry.ConnectionType, &entry.LinkSpeed, &entry.TimeoutSeconds,
                                     &entry.ConnectionStatus})
            *number = input.ConsumeBool() ? input.ConsumeIntegral<qint32>() : input.ConsumeIntegral<std::int8_t>();
        entry.Selected = input.ConsumeBool();
    }
    return entries;
}

QByteArray Write(const Entries& entries)
{
    std::vector<const Connection*> pointers;
    for (const Connection& entry : entries)
        pointers.push_back(&entry);
    return ConnectionList::Write(pointers);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Tidy tidy;
    FuzzedDataProvider input(data, size);
    const Entries entries = TakeEntries(input);
    const Entries expected = WithoutUnwritable(entries);

    const QByteArray document = Write(entries);
    Require(document.isValidUtf8(), "a document is UTF-8");
    const Connection plain;
    qint64 expectedSize = Write({plain}).size() - ConnectionList::WrittenSize(plain);
    for (const Connection& entry : entries)
        expectedSize += ConnectionList::WrittenSize(entry);
    Require(entries.empty() || document.size() == expectedSize, "the size is known before writing");
    Entries read;
    const bool result = ConnectionList::Read(document, [&](const Connection& entry) { read.push_back(entry); });
    Require(result == !entries.empty(), "the result is true if there are entries");
    Require(IsSame(read, expected), "what is written is read back");
    Require(Write(read) == document, "writing what was read gives the same document");
    Require(Traces().isEmpty(), "a written document has no errors");

    // Without an object name the model neither loads nor stores, which it traces.
    ConnectionsModel model(nullptr, QString());
    for (const Connection& entry : entries)
        model.AddConnection(entry);
    RequireCounts(model);
    Require(model.ToByteArray() == document, "the model writes the same document");
    Require(model.FromByteArray(document) == !entries.empty(), "the model reads it");
    RequireCounts(model);
    Require(IsSame(EntriesOf(model), Freed(expected)), "the model has the same entries, all free");
    return 0;
}
