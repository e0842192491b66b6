// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/store/versionfilter.h"

#include <QByteArrayView>
#include <QString>
#include <QStringView>

#include <algorithm>

namespace {

const QString kListPath = QStringLiteral("ConnectionsModel/ModelMimeData");

// The stored text is the hexadecimal form of an XML document: each of its bytes takes two characters.
constexpr qsizetype kByte = 2;

QString Hex(QByteArrayView text)
{
    return QString::fromLatin1(text.toByteArray().toHex());
}

const QString kStatusTag = Hex("<ConnectionStatus>");
const QString kStatusEndTag = Hex("</ConnectionStatus>");
const QString kSectionStart = Hex("<![CDATA[");
const QString kSectionEnd = Hex("]]>");

/// Returns whether a decimal digit begins at `at`.
bool IsDigit(QStringView hex, qsizetype at)
{
    return at + kByte <= hex.size() && hex[at] == u'3' && hex[at + 1] >= u'0' && hex[at + 1] <= u'9';
}

/// Returns whether a CDATA section is open at the end of `hex`; at its beginning none is.
bool EndsInSection(QStringView hex)
{
    for (qsizetype at = hex.size() - kSectionEnd.size(); at >= 0; at -= kByte) {
        const QStringView rest = hex.sliced(at);
        if (rest.startsWith(kSectionEnd))
            return false;
        if (rest.startsWith(kSectionStart))
            return true;
    }
    return false;
}

/// Returns what follows the number that begins at `at`.
QStringView AfterNumber(QStringView hex, qsizetype at)
{
    while (IsDigit(hex, at))
        at += kByte;
    return hex.sliced(at);
}

/// Compares two lists without reading them: at each difference, looks at the text around it.
bool ListsDifferInMoreThanStatuses(QStringView before, QStringView after)
{
    for (;;) {
        const auto difference = std::mismatch(before.begin(), before.end(), after.begin(), after.end()).first;
        qsizetype at = difference - before.begin();
        if (at == before.size() && at == after.size())
            return false;
        at -= at % kByte;
        while (at > 0 && IsDigit(before, at - kByte))
            at -= kByte;
        if (!before.first(at).endsWith(kStatusTag) || EndsInSection(before.first(at)))
            return true;
        before = AfterNumber(before, at);
        after = AfterNumber(after, at);
        if (!before.startsWith(kStatusEndTag) || !after.startsWith(kStatusEndTag))
            return true;
    }
}

} // namespace

bool DiffersInMoreThanStatuses(const ConfigValues& before, const ConfigValues& after)
{
    if (before.size() != after.size())
        return true;
    auto other = after.cbegin();
    for (auto it = before.cbegin(); it != before.cend(); ++it, ++other) {
        if (it.key() != other.key())
            return true;
        if (it.value() == other.value())
            continue;
        if (it.key() != kListPath || ListsDifferInMoreThanStatuses(it.value(), other.value()))
            return true;
    }
    return false;
}
