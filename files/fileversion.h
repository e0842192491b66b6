// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QByteArray>

class QString;

/// Returns what changes whenever the file at `path` is replaced or written: its identity, size and times. Empty if the
/// file does not exist, or where the system cannot tell.
QByteArray FileVersion(const QString& path);
