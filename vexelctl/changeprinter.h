#pragma once

#include <QJsonObject>

/// Prints the lines of an answer that tell of changes: of statuses, and of the number of entries.
class ChangePrinter
{
public:
    /// Prints JSON objects, or text in the user's language.
    explicit ChangePrinter(bool json);

    /// Prints a line if it tells of a change.
    void Print(const QJsonObject& line);

    /// Returns whether standard output could not be written. Nothing is printed then any more.
    bool HasFailed() const { return m_hasFailed; }

private:
    const bool m_json;
    bool m_hasFailed = false;
};
