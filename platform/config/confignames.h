#pragma once

#include "platform/cfgcenter.h"

#include <QString>

/// How the names of the configuration become key paths inside a document and file paths inside the store.
///
/// A key path is the steps from the document's root to a key, joined by '/'.
namespace ConfigNames {

/// One node or key name as a step of a key path. Any name will do, also an empty one and one with slashes; different
/// names give different steps.
QString ToStep(const QString& name);

/// As `ToStep`, with every character escaped: for places where a plain name would be taken for another one. Reads back
/// the same.
QString ToEscapedStep(const QString& name);

/// The name that a step stands for. A step that was not made here but typed into a file by hand reads as far as it
/// makes sense.
QString FromStep(const QString& step);

/// The file of the application's own document, relative to the store. No document name leads to it.
QString ApplicationFile(View view);

/// The file of document `name`, relative to the store and always below it. A slash in the name makes a folder; what
/// some file system reserves or reads in a way of its own is escaped.
QString DocumentFile(View view, const QString& name);

} // namespace ConfigNames
