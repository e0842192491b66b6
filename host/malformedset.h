#pragma once

#include <QString>

/// The plug-in loads a stored list as far as it can be read, and stores no more than that when it ends. So that the
/// rest is not lost, this keeps a copy of the document beside it, for good, where the list in it breaks off; never two
/// copies of the same content. Call after `CfgCenter::Open` and before the plug-in's instance is made.
///
/// Returns what is to be said about it, in a line for a person; empty where the list is in order.
QString KeepMalformedSetAside();
