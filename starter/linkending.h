#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QtGlobal>

/// How a connection ended after everything had been said from this side.
enum class LinkEnding {
    Closed, ///< the other side closed it, having sent nothing
    Spoke,  ///< the other side sent something
    CutOff, ///< it broke off, as when the other program ended without having taken the call
    None,   ///< nothing of that until the deadline
};

/// Sends `line` over the connected socket `handle`, closes the sending direction, and waits for what the other side
/// does. Qt's sockets close both directions at once and take a connection that breaks off for one that was closed, so
/// this is done below them.
LinkEnding EndAndWait(qintptr handle, const QByteArray& line, QDeadlineTimer deadline);
