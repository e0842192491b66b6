// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

class QProcess;

/// Kills `process` and waits for its end, so that no child process or zombie remains. Handles no events of other
/// objects. Waits at most 30 s, in case the system does not end it. Does nothing if it does not run. Call this in the
/// thread of `process`.
void KillAndWait(QProcess& process);
