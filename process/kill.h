// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

class QProcess;

/// Kills `process` and waits for its end, so that no child process or zombie remains. Handles no events of other
/// objects. Waits at most 30 s, for a process that the system does not end. Does nothing if it does not run.
void KillAndWait(QProcess& process);
