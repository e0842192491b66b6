// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>

class QDateTime;

/// Returns an unused name next to `file` for a copy of it: `file`, `mark` and `time` in UTC, as in
/// "list.json.damaged-20260304T101112345". Dangling links count as used.
QString UniqueSiblingName(const QString& file, const QString& mark, const QDateTime& time);
