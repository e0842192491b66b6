#pragma once

#include <QAbstractItemModel>
#include <QByteArray>
#include <QString>

/// Returns the entries as a table for people: a heading, then one line per entry, long texts shortened. Ends with a
/// line break.
QString ConnectionTable(const QAbstractItemModel& entries);

/// Returns the entries as JSON for programs: an object with an array "connections". Each element has every field, and
/// for each enumerated field also the displayed text.
QByteArray ConnectionJson(const QAbstractItemModel& entries);
