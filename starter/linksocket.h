#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QtGlobal>

/// Socket operations Qt does not offer: half-close, and telling a reset from a close. `handle` is the native descriptor
/// of a connected socket.

/// What the peer has done.
enum class PeerEvent {
    None,     ///< nothing until the deadline
    Closed,   ///< closed the connection without sending data
    SentData, ///< sent data
    Reset,    ///< reset the connection, for example by ending before it accepted the call
};

/// Sends `line`. Returns false if the peer has reset the connection; not every system reports that again to
/// `WaitForPeer`.
bool SendLine(qintptr handle, const QByteArray& line);
/// Closes the sending direction.
void ShutdownSending(qintptr handle);
/// Waits until the peer does something, at most until `deadline`.
PeerEvent WaitForPeer(qintptr handle, QDeadlineTimer deadline);
