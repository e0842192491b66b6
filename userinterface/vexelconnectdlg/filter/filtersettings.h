// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>

/// The filter's three inputs, as they are stored between runs.
struct FilterSettings
{
    int column = 1; ///< model column; may lie outside the table
    QString pattern;
    int searchMode = 0; ///< a `SearchMode` value

    /// Reads the user's configuration. A column one step outside the table is moved into it; an unknown search mode
    /// becomes plain text.
    static FilterSettings Load();
    void Save() const;
};
