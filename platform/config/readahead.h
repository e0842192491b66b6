// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/config/documentfile.h"

#include <QString>

#include <future>
#include <optional>

/// Reads one document before it is needed, in another thread. GUI thread only.
namespace ReadAhead {

/// Begins to read `file`. What was read before is dropped.
void Begin(const QString& file);

struct Document
{
    DocumentReading reading; ///< valid; whether it is intact is not known yet
    std::future<bool> isIntact;
};

/// Returns what was read of `file`, once it is there, and forgets it. None if it was another file, is not a valid
/// document, or may have changed since; on Windows always.
std::optional<Document> Take(const QString& file);

/// Returns when the file has been read, for tests.
void WaitForReading();

} // namespace ReadAhead
