// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/output/texttable.h"

#include "process/textline.h"

#include <algorithm>

QString TextTable(const std::vector<QStringList>& lines)
{
    constexpr int kGap = 2;
    if (lines.empty())
        return {};

    std::vector<int> widths(static_cast<std::size_t>(lines.front().size()), 0);
    for (const QStringList& line : lines)
        for (std::size_t i = 0; i < widths.size(); ++i)
            widths[i] = std::max(widths[i], CellCount(line.at(static_cast<qsizetype>(i))));

    QString table;
    for (const QStringList& line : lines) {
        int blanks = 0;
        for (std::size_t i = 0; i < widths.size(); ++i) {
            const QString& text = line.at(static_cast<qsizetype>(i));
            if (!text.isEmpty()) {
                table += QString(blanks, QLatin1Char(' ')) + text;
                blanks = 0;
            }
            blanks += widths[i] - (text.isEmpty() ? 0 : CellCount(text)) + kGap;
        }
        table += QLatin1Char('\n');
    }
    return table;
}
