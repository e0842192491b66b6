// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QFileInfoList>
#include <QString>

/// What a crash of the host leaves behind.
///
/// On Windows this is a minidump: the modules, the threads and their stacks at the time of the crash, but not the other
/// memory. docs/windows.md says how to read it. On other systems the kernel writes a core file if it is told to, and
/// these functions do nothing.
namespace CrashDumps {

/// How many dumps are kept. There is one more from a crash to the next start.
constexpr qsizetype kKept = 5;

/// From now on a crash of this process writes a minidump to the folder "crashes" in `configDirectory`. Creates nothing
/// until then. Removes all but the newest dumps of earlier crashes.
void Install(const QString& configDirectory);

/// The dumps in `configDirectory`, the newest first. Each has file name, time and size.
QFileInfoList Stored(const QString& configDirectory);

} // namespace CrashDumps
