// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// Reads any bytes within small limits: whatever gets through keeps them, and only what exceeds them is refused.

#include "fuzz/fuzzing.h"
#include "userinterface/vexelconnectdlg/formats/boundedxmlreader.h"

#include <algorithm>

using namespace Fuzzing;

namespace {

// References are not limited: Qt's reader does not report them.
const XmlLimits kSmall{.depth = 4, .attributes = 3, .nodes = 12};
const XmlLimits kLarge{.depth = 10'000, .attributes = 10'000, .nodes = 10'000};

/// What Qt's reader has read of a document, up to its end or an error.
struct Counts
{
    qsizetype depth = 0;      ///< the most
    qsizetype attributes = 0; ///< the most
    qsizetype nodes = 0;
    qsizetype tokens = 0;
    QString error;

    bool Keeps(const XmlLimits& limits) const
    {
        return depth <= limits.depth && attributes <= limits.attributes && nodes <= limits.nodes;
    }
};

Counts Read(const QByteArray& document, const XmlLimits& limits)
{
    Counts counts;
    qsizetype depth = 0;
    BoundedXmlReader reader(document, limits);
    while (!reader.atEnd()) {
        ++counts.tokens;
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            counts.depth = std::max(counts.depth, ++depth);
            counts.attributes = std::max(counts.attributes, reader.attributes().size());
            counts.nodes += 1 + reader.attributes().size();
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        case QXmlStreamReader::DTD:
            Require(reader.entityDeclarations().isEmpty() && reader.notationDeclarations().isEmpty(),
                    "no document type declares anything");
            [[fallthrough]];
        case QXmlStreamReader::Comment:
        case QXmlStreamReader::ProcessingInstruction:
            ++counts.nodes;
            break;
        default:
            break;
        }
    }
    counts.error = reader.errorString();
    return counts;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Tidy tidy;
    const QByteArray document = ToBytes(data, size);
    const Counts bounded = Read(document, kSmall);
    Require(bounded.Keeps(kSmall), "what is read keeps the limits");

    const Counts all = Read(document, kLarge);
    const bool isRefused = bounded.error != all.error;
    Require(!isRefused || bounded.tokens == 0, "nothing is read of a refused document");
    if (!all.error.isEmpty())
        return 0;
    // The XML declaration counts as a node, but is no token of its own.
    Require(isRefused || all.Keeps(kSmall), "a document above the limits is refused");
    const XmlLimits strict{.depth = kSmall.depth, .attributes = kSmall.attributes, .nodes = kSmall.nodes - 1};
    Require(!isRefused || !all.Keeps(strict), "a document within the limits is read");
    return 0;
}
