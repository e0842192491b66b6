// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "userinterface/vexelconnectdlg/connection.h"

#include <QString>

#include <atomic>
#include <vector>

/// How far another thread has come with reading a list, and whether it is still wanted.
struct ReadingProgress
{
    std::atomic<int> entries = 0;         ///< read so far
    std::atomic<int> total = 0;           ///< about as many entries has the document; 0: not yet known
    std::atomic<bool> isUnwanted = false; ///< set by the other thread: the result is not needed any more
};

/// The content of a file with a connection list. Any thread.
struct ImportedList
{
    bool isReadable = false; ///< there is such a file, and it is not too large
    bool isWhole = false;    ///< `ConnectionList::Read` has read it to its end
    std::vector<Connection> entries;
    int rankedColumn = -1;
    std::vector<int> ranks; ///< see `ConnectionsModel::SortRanks`

    /// Reads `fileName`, and ranks the entries by `column`.
    static ImportedList Read(const QString& fileName, int column, ReadingProgress& progress);
};
