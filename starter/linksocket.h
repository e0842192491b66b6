// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QtGlobal>

#include <chrono>

/// Socket operations Qt does not offer, such as half-close, and telling a reset from a close. `handle` is the native
/// descriptor of a connected socket.

/// What the peer has done.
enum class PeerEvent {
    None,     ///< nothing until the deadline
    Closed,   ///< closed the connection without sending data
    SentData, ///< sent data
    Reset,    ///< reset the connection, for example by ending before it accepted the call
};

/// How long to wait for a connection within this machine before trying once more. If the system's queue of callers is
/// full, the system itself tries too seldom to succeed beside others that call all the time.
std::chrono::milliseconds ConnectTime();
/// Sends `line`. Returns false if the peer has reset the connection; not every system reports that again to
/// `WaitForPeer`.
bool SendLine(qintptr handle, const QByteArray& line);
/// Closes the sending direction.
void ShutdownSending(qintptr handle);
/// Waits until the peer does something, at most until `deadline`.
PeerEvent WaitForPeer(qintptr handle, QDeadlineTimer deadline);
