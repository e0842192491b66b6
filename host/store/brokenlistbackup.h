// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>

struct StoredSet;

/// Copies the configuration document if the stored list in it is malformed. The plug-in loads only the entries before
/// the error and would overwrite the rest on exit. The copy is kept next to the document, and never removed; identical
/// content is not copied twice. `set` is what the application's own document stores. Call this before that document is
/// first saved.
///
/// Returns a message for the user; empty if the list is intact.
QString BackUpBrokenList(const StoredSet& set);
