// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QList>

/// Records how long this process was willing to wait for the start of each process.
namespace StartWaits {

/// The limits in milliseconds, since the last call of `Forget`.
const QList<int>& All();
void Forget();

} // namespace StartWaits
