// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QJsonObject>

/// Prints changes of statuses and of the number of entries, from the lines of an answer.
class ChangePrinter
{
public:
    /// Prints JSON objects, or text in the user's language.
    explicit ChangePrinter(bool json);

    /// Prints `line` if it is a change, and ignores it otherwise.
    void Print(const QJsonObject& line);

    /// Returns whether standard output could not be written. Nothing is printed then any more.
    bool HasFailed() const { return m_hasFailed; }

private:
    const bool m_json;
    bool m_hasFailed = false;
};
