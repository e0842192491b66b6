// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>

/// Returns what the user is told when the configuration could not be saved: that it could not, why (`error`), and what
/// to do.
QString UnsavedText(const QString& error);
