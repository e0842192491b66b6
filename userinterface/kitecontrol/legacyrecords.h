// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "userinterface/kitecontrol/connectdata.h"

#include <QString>

#include <vector>

class ICfg;

/// The legacy records of the product configuration.
struct LegacyRecords
{
    /// At most this many are read, whatever count the configuration claims.
    static constexpr int kMaximumCount = 100'000;
    /// Larger documents are not read, because that would take seconds. This one has some 70,000 records.
    static constexpr qint64 kMaximumSize = qint64{32} * 1024 * 1024; // bytes

    QString configuration; ///< directory of the configuration; empty if unknown
    QString problem;       ///< why there are no records; empty if they were read
    std::vector<ConnectData> records;

    /// The records of the configuration in `directory`, which may be read-only and in use. Nothing in it is changed or
    /// created, whatever state it is in. Opens and closes the configuration centre.
    static LegacyRecords FromDirectory(const QString& directory);

    /// Returns the records of the document node `document` in the order of their numbers, as many as "ConnectionCount"
    /// says.
    static std::vector<ConnectData> FromDocument(ICfg* document);
};
