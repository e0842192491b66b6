// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/view.h"

#include <QString>

/// Maps names of the configuration to key paths inside a document and to file paths inside the store.
///
/// A key path is the steps from the document's root to a key, joined by '/'.
namespace ConfigNames {

/// One node or key name as a step of a key path. Any name is allowed, also an empty one and one with slashes; different
/// names give different steps.
QString ToStep(const QString& name);

/// The file of the application's own document, relative to the store. No document name maps to it.
QString ApplicationFile(View view);

/// The file of document `name`, relative to the store and always below it. A slash in the name makes a folder.
/// Characters that some file system reserves or treats specially are escaped.
QString DocumentFile(View view, const QString& name);

} // namespace ConfigNames
