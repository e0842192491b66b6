// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/import/importedlist.h"

#include "files/boundedfile.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/formats/connectionlist.h"

#include <algorithm>
#include <optional>

ImportedList ImportedList::Read(const QString& fileName, int column, ReadingProgress& progress)
{
    ImportedList list;
    const std::optional<QByteArray> document = ReadRegularFile(fileName, ConnectionList::kMaximumSize);
    if (!document)
        return list;
    list.isReadable = true;
    const qsizetype total = std::min<qsizetype>(document->count("<Connection>"), ConnectionList::kMaximumEntries);
    progress.total = static_cast<int>(total);
    list.entries.reserve(static_cast<std::size_t>(total));
    list.isWhole = ConnectionList::Read(*document, [&](const Connection& entry) {
        if (progress.isUnwanted)
            return list.entries.clear();
        list.entries.push_back(entry);
        ++progress.entries;
    });
    if (progress.isUnwanted)
        return {};
    list.rankedColumn = column;
    // All will be "Free".
    if (column == ConnectionsModel::ColumnStatus)
        list.ranks.resize(list.entries.size());
    else
        list.ranks = ConnectionsModel::SortRanks(list.entries, column);
    return list;
}
