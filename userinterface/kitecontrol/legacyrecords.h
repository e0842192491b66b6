#pragma once

#include "userinterface/kitecontrol/connectdata.h"

#include <QString>

#include <vector>

class ICfg;

/// The legacy records as the product's configuration holds them.
struct LegacyRecords
{
    /// No more than this many are read, whatever count a configuration claims.
    static constexpr int kMaximumCount = 100'000;

    QString configuration; ///< the configuration's directory; empty: none is known
    QString problem;       ///< why there are no records; empty: they were read
    std::vector<ConnectData> records;

    /// The records of the configuration in `directory`, which may be read-only and in use. Nothing in it is changed or
    /// created, whatever state it is in. Opens and closes the configuration centre.
    static LegacyRecords FromDirectory(const QString& directory);

    /// The records of the document node `document`, in the order of their numbers; "ConnectionCount" bounds them.
    static std::vector<ConnectData> FromDocument(ICfg* document);
};
