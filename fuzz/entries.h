// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "fuzz/fuzzing.h"
#include "userinterface/vexelconnectdlg/connection.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"

#include <QString>

#include <algorithm>
#include <vector>

/// Comparing and converting entries, for the fuzzers.
namespace Fuzzing {

using Entries = std::vector<Connection>;

/// Compares all ten fields; operator== ignores status and selection.
inline bool IsSame(const Connection& a, const Connection& b)
{
    return a == b && a.ConnectionStatus == b.ConnectionStatus && a.Selected == b.Selected;
}

inline bool IsSame(const Entries& a, const Entries& b)
{
    return std::equal(
        a.begin(), a.end(), b.begin(), b.end(),
        [](const Connection& left, const Connection& right) { return IsSame(left, right); });
}

inline Entries EntriesOf(const ConnectionsModel& model)
{
    Entries entries;
    for (int row = 0; row < model.rowCount(); ++row)
        entries.push_back(model.GetConnection(row));
    return entries;
}

/// Checks the counts that the model maintains incrementally by counting again.
inline void RequireCounts(const ConnectionsModel& model)
{
    int selectedFree = 0;
    int inUse = 0;
    int selected = 0;
    for (const Connection& entry : EntriesOf(model)) {
        selected += entry.Selected ? 1 : 0;
        inUse += entry.ConnectionStatus != 0 ? 1 : 0;
        selectedFree += entry.Selected && entry.ConnectionStatus == 0 ? 1 : 0;
    }
    Require(model.CountSelected() == selected, "the count of selected entries");
    Require(model.CountInUse() == inUse, "the count of entries in use");
    Require(model.CountSelectedFree() == selectedFree, "the count of selected free entries");
}

/// `text` without characters that XML 1.0 does not allow.
inline QString WithoutUnwritable(const QString& text)
{
    QString writable;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t unit = text.at(i).unicode();
        if (unit >= 0xD800 && unit <= 0xDBFF && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
            writable.append(text.at(i)).append(text.at(i + 1));
            ++i;
        } else if (unit == 0x9 || unit == 0xA || unit == 0xD || (unit >= 0x20 && unit <= 0xD7FF) ||
                   (unit >= 0xE000 && unit <= 0xFFFD)) {
            writable.append(text.at(i));
        }
    }
    return writable;
}

inline Connection WithoutUnwritable(Connection entry)
{
    for (QString* const text : {&entry.ConnectionName, &entry.DeviceAddress, &entry.DriverAddress, &entry.Subsystem})
        *text = WithoutUnwritable(*text);
    return entry;
}

inline Entries WithoutUnwritable(const Entries& entries)
{
    Entries writable;
    for (const Connection& entry : entries)
        writable.push_back(WithoutUnwritable(entry));
    return writable;
}

inline Entries Freed(Entries entries)
{
    for (Connection& entry : entries)
        entry.ConnectionStatus = Connection::Free;
    return entries;
}

} // namespace Fuzzing
