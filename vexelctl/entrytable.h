// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "host/plugin/entryapplication.h"
#include "userinterface/vexelconnectdlg/connection.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

/// An entry of a running host or of the stored list.
struct ListedEntry
{
    Connection entry;
    std::optional<EntryApplication> application; ///< none: the entry is free, or it is not known who serves it
};

/// Returns the entries as a table for people: a heading, then one line per entry, long texts shortened. The columns
/// "Since", "Program" and "Process" are only there if an entry is in use. Ends with a line break.
QString EntryTable(const std::vector<ListedEntry>& entries);

/// Returns the entries as JSON for programs: an object with an array "connections", see `EntryToJson`.
QByteArray EntryJson(const std::vector<ListedEntry>& entries);

/// Returns the name of a program's file, without what Windows adds.
QString ProgramName(const QString& file);
