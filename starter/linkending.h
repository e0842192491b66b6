#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QtGlobal>

/// Of a connected socket, what lies below Qt's: those close both directions at once only, and take a connection that
/// breaks off for one that was closed. `handle` is the system's name of the socket.

/// What the other side has done.
enum class LinkEnding {
    None,   ///< nothing yet
    Closed, ///< closed the connection, having sent nothing
    Spoke,  ///< sent something
    CutOff, ///< broke the connection off, as a program does that ends without having taken the call
};

/// Sends `line`. False: the other side has broken the connection off already. Not every system says so a second time,
/// to who waits afterwards.
bool SendLine(qintptr handle, const QByteArray& line);
/// Closes the sending direction.
void EndSending(qintptr handle);
/// Waits until the other side does something, and no longer than `deadline`.
LinkEnding WaitForEnding(qintptr handle, QDeadlineTimer deadline);
