#pragma once

#include "userinterface/vexelconnectdlg/connection.h"

#include <QDateTime>
#include <QJsonObject>
#include <QString>

#include <optional>

/// The application that serves an entry in use.
struct EntryUse
{
    QString program;    ///< the file that was started
    qint64 process = 0; ///< process ID
    QDateTime since;
};

/// An entry of a running host or of the stored list.
struct ListedEntry
{
    Connection entry;
    std::optional<EntryUse> use; ///< none: the entry is free, or it is not known who serves it
};

/// Entries as JSON for programs. It does not depend on the language: each enumerated value has its number, and its
/// English text under another key.
namespace ConnectionJson {

/// Returns a time as text: ISO 8601 with milliseconds and the offset from UTC ("2026-03-04T10:11:12.013+01:00").
QString Time(const QDateTime& time);

/// Returns the fields of an entry and, if `use` is given, "since", "program" and "process".
QJsonObject Write(const Connection& entry, const std::optional<EntryUse>& use = {});

/// Reads what `Write` returned. A missing field is empty or 0.
ListedEntry Read(const QJsonObject& object);

} // namespace ConnectionJson
