#pragma once

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

/// What tests ask the operating system about processes, or ask of it, each system in its own way.
namespace System {

/// Whether there is such a process; one that has ended but was not waited for still is there.
bool IsProcess(qint64 number);

/// The file that a running process was started from; empty where there is none.
QString ProgramOf(qint64 number);

/// The ways in which a process without a window is asked to end here, by name.
QStringList RequestsToEnd();

/// Asks a process to end, in the first of these ways or in another one. False where it cannot be asked.
bool AskToEnd(qint64 number, const QString& request = RequestsToEnd().constFirst());

/// Lets this process end at once with exit code 0, or go on, when it is asked to end. Needs an application object.
void EndWhenAsked();
void GoOnWhenAsked();

/// The names of devices that stand where a file's name is asked for; the first has nothing in it, and takes everything.
QStringList Devices();

/// Makes a named pipe that nobody writes to, in this file where the system has pipes among its files. Returns its name;
/// empty when it could not be made.
QString MakePipe(const QString& file);

/// How many files, pipes and sockets this process has open.
qsizetype OpenHandles();

/// Where a standard stream of this process leads: "nothing", "pipe", or another text.
QString StreamTarget(int stream);

/// Whether this process has a console, or a terminal that it would be ended with.
bool HasConsole();

/// Takes the display from `environment`, as for a person who has none, and the choice of a platform. False: there
/// always is one, and programs keep to the test's choice.
bool TakeDisplay(QProcessEnvironment& environment);

/// Whether this is Windows as Wine has it, which is not like the real one in everything.
bool IsWine();

/// The memory that this process occupies, in KiB.
qint64 ResidentKiB();

} // namespace System
