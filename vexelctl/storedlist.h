// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "host/output/exitcode.h"
#include "host/store/storedset.h"
#include "vexelctl/listfiles.h"

#include <QString>

#include <functional>
#include <optional>

class ICfg;

/// The stored list of a configuration directory that no host uses. Notices about damaged documents, and errors, go to
/// standard error.
namespace StoredList {

/// Opens the configuration in `directory` for looking, calls `work`, and closes it: nothing is created, locked or
/// written. Returns what `work` does, or `Unusable` if there is no such directory.
ExitCode Look(const QString& directory, const std::function<ExitCode()>& work);

/// Within `Look`: the stored entries. None, after an error, if they are not known, for example because the document is
/// damaged and has no version that can be read.
std::optional<Entries> Read();

/// What a document stores.
struct Content
{
    StoredSet set;
    Entries entries; ///< all "Free"; of a malformed set those before the error
};
Content ContentOf(ICfg& document);

/// Makes the new list from the present one; none, after an error, if that is not possible.
using Change = std::function<std::optional<Entries>(Entries present)>;

/// Changes the list stored in `directory`, which is created if missing, and saves it. Stores `dataDirectory` unless it
/// is empty. The caller holds the lock of the directory.
ExitCode Edit(const QString& directory, const QString& dataDirectory, const Change& change);

} // namespace StoredList
