// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

class QIcon;

/// Returns `icon` with a white plate behind it in mode `QIcon::Selected`, and unchanged in the other modes.
///
/// By default, Qt tints the icon of a selected row with the highlight colour, and a green one can then not be seen.
QIcon PlatedIcon(const QIcon& icon);
