#pragma once

#include <QString>

struct StoredSet;

/// The plug-in loads a stored list as far as it can be read, and stores no more than that when it ends. So that the
/// rest is not lost, this keeps a copy of the document beside it, for good, where the list in it breaks off; never two
/// copies of the same content. `set` is what is stored in the application's own document. Call before that document is
/// saved for the first time.
///
/// Returns what is to be said about it, in a line for a person; empty where the list is in order.
QString BackUpBrokenList(const StoredSet& set);
