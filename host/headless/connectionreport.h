#pragma once

#include <QAbstractItemModel>
#include <QByteArray>
#include <QString>

/// The list of entries for a person: a table with a heading, one line per entry whatever its texts hold, long texts
/// cut. Ends with a line break.
QString ConnectionTable(const QAbstractItemModel& entries);

/// The list of entries for a program: a JSON object whose "connections" are objects with every field as it is, and
/// with the text that is shown for each number.
QByteArray ConnectionJson(const QAbstractItemModel& entries);
