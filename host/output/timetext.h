#pragma once

#include <QString>

class QDateTime;

/// A time in reports, for people: "2026-03-04 10:11:12", or "-" where it is not known.
QString TimeText(const QDateTime& time);
