#pragma once

#include <QStringList>

/// What this process was handed by the one that started it, besides the standard streams: open files, pipes
/// and sockets. One text for each, which says what it is as far as the system tells. Call before anything is opened.
QStringList InheritedHandles();

/// What a process would be handed that is started now, in the same words; not what is meant for it, its own streams.
QStringList HandlesToInherit();
