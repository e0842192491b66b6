#pragma once

#include "userinterface/vexelconnectdlg/connectionjson.h"

#include <QByteArray>
#include <QString>

#include <vector>

/// Returns the entries as a table for people: a heading, then one line per entry, long texts shortened. The columns
/// "Since", "Program" and "Process" are only there if an entry is in use. Ends with a line break.
QString EntryTable(const std::vector<ListedEntry>& entries);

/// Returns the entries as JSON for programs: an object with an array "connections", see `ConnectionJson`.
QByteArray EntryJson(const std::vector<ListedEntry>& entries);

/// Returns the name of a program's file, without what Windows adds.
QString ProgramName(const QString& file);
