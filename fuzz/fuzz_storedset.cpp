// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// Loads any text as the stored set, stores it and loads it again.

#include "fuzz/entries.h"
#include "platform/cfgcenter.h"
#include "platform/icfg.h"
#include "userinterface/vexelconnectdlg/formats/connectionlist.h"

#include <memory>

using namespace Fuzzing;

namespace {

const QString kName = QStringLiteral("ConnectionsModel");
const QString kKey = QStringLiteral("ModelMimeData");

std::unique_ptr<ICfg> Node()
{
    return std::unique_ptr<ICfg>(CfgCenter::GetAppCfg(View::Application)->OpenChild(kName, 0));
}

QString Stored()
{
    return Node()->GetString(kKey, QStringLiteral("nothing"), 0);
}

/// Decodes two hexadecimal digits per byte and ignores other characters. With an odd number of digits, the first digit
/// is a byte.
QByteArray Decoded(const QString& text)
{
    std::vector<unsigned> digits;
    for (const QChar c : text) {
        const char16_t unit = c.unicode();
        if (unit >= u'0' && unit <= u'9')
            digits.push_back(unit - unsigned{u'0'});
        else if (unit >= u'a' && unit <= u'f')
            digits.push_back(unit - unsigned{u'a'} + 10);
        else if (unit >= u'A' && unit <= u'F')
            digits.push_back(unit - unsigned{u'A'} + 10);
    }
    if (digits.size() % 2 != 0)
        digits.insert(digits.begin(), 0);
    QByteArray bytes;
    for (std::size_t i = 0; i < digits.size(); i += 2)
        bytes.append(static_cast<char>(digits[i] * 16 + digits[i + 1]));
    return bytes;
}

Entries Read(const QByteArray& document)
{
    Entries entries;
    ConnectionList::Read(document, [&](const Connection& entry) { entries.push_back(entry); });
    return entries;
}

/// The text to load: valid hexadecimal, hexadecimal with one wrong character, or any text.
QString TakeStored(FuzzedDataProvider& input)
{
    const int kind = input.ConsumeIntegralInRange(0, 3);
    const auto place = input.ConsumeIntegral<std::uint16_t>();
    const auto unit = input.ConsumeIntegral<char16_t>();
    if (kind == 0)
        return TakeText(input, input.remaining_bytes());
    QByteArray hex = TakeRest(input).toHex();
    QString text = QString::fromLatin1(kind == 1 ? hex.toUpper() : hex);
    if (kind == 2)
        text.insert(place % (text.size() + 1), QChar(unit));
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Tidy tidy;
    FuzzedDataProvider input(data, size);
    const QString text = TakeStored(input);
    Node()->SetString(kKey, text, 0);

    const Entries expected = Freed(Read(Decoded(text)));
    {
        const ConnectionsModel model(nullptr, kName);
        Require(IsSame(EntriesOf(model), expected), "the entries are those of the stored document, all free");
        RequireCounts(model);
        Require(Stored() == text, "loading does not change the stored set");
    }
    const QString stored = Stored();
    for (const QChar c : stored)
        Require((c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f'), "the set is stored in lower-case digits");
    const ConnectionsModel again(nullptr, kName);
    Require(IsSame(EntriesOf(again), WithoutUnwritable(expected)), "what is stored is loaded");
    Require(QString::fromLatin1(again.ToByteArray().toHex()) == stored, "storing what was loaded gives the same text");
    return 0;
}
