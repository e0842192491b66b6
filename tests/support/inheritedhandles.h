#pragma once

#include <QStringList>

/// The open files, pipes and sockets that this process inherited, without the standard streams. One text for each, with
/// its name as far as the system knows one. Call before anything is opened.
QStringList InheritedHandles();

/// The same for a process that would be started now.
QStringList HandlesToInherit();
