#pragma once

#include <QString>

class QDateTime;

/// A name beside `file` that nobody has, not even a link that leads nowhere, for something that is kept of it: `file`,
/// then `mark`, then `time` (in UTC), as in "list.json.damaged-20260304T101112345".
QString UniqueSiblingName(const QString& file, const QString& mark, const QDateTime& time);
