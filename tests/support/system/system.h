// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

/// Platform-specific functions for tests: processes, streams, devices and memory.
namespace System {

/// Whether the process exists. On Unix, a process that has ended exists until its parent has waited for it.
bool IsProcess(qint64 number);

/// Stop a process and let it go on. False if that is impossible.
bool Suspend(qint64 number);
bool Resume(qint64 number);

/// The executable file of a running process; empty if there is no such process.
QString ProgramOf(qint64 number);

/// Names of the ways to ask a process without a window to end on this system.
QStringList RequestsToEnd();

/// Asks a process to end, by default in the first of these ways. Returns false if that is impossible.
bool AskToEnd(qint64 number, const QString& request = RequestsToEnd().constFirst());

/// Kills a process, which counts as a crash. Returns false if that is impossible.
bool Crash(qint64 number);

/// How this process reacts to such a request: exit at once with code 0, or ignore it. Needs an application object.
void EndWhenAsked();
void GoOnWhenAsked();

/// Device names that are valid file names. The first is the null device.
QStringList Devices();

/// Creates a named pipe without a writer, as `file` if the system has pipes in the file system. Returns its name, or an
/// empty string on failure.
QString MakePipe(const QString& file);

/// The number of open files, pipes and sockets of this process.
qsizetype OpenHandles();

/// What a standard stream of this process is connected to: "nothing", "pipe", or another text.
QString StreamTarget(int stream);

/// Whether this process has a console, or a controlling terminal whose end would end it.
bool HasConsole();

/// Removes the display and the choice of a Qt platform from `environment`, as for a user without a display. Returns
/// false and changes nothing if this system always has a display.
bool TakeDisplay(QProcessEnvironment& environment);

/// Whether this runs under Wine, which differs from Windows in some ways.
bool IsWine();

/// The memory used by this process, in KiB.
qint64 ResidentKiB();

} // namespace System
