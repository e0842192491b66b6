#pragma once

#include <future>

class ICfg;

/// The list of entries as it is stored in the application's own document, looked at without the plug-in.
struct StoredSet
{
    enum class State {
        None,     ///< nothing is stored
        Whole,    ///< can be read to its end
        Malformed ///< breaks off: the plug-in would load what stands before that place, and store only that
    };

    State state = State::None;
    int entries = 0; ///< of a malformed set those that begin before it breaks off
};

/// Looks at the set in the document with the root node `document`. Nothing of the set is kept in memory beyond its
/// text, and no entity is expanded.
StoredSet ReadStoredSet(ICfg& document);

/// The same on a thread of its own: a long set takes a good part of a second, in which others can get on. The set is
/// the one that is in the document now; what changes there later makes no difference.
std::future<StoredSet> BeginToReadStoredSet(ICfg& document);
