// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QDeadlineTimer>
#include <QtGlobal>

#include <chrono>

/// The result of a call.
enum class LinkAnswer {
    Accepted,     ///< somebody accepted the call and closed it without sending data, as a dialog does
    Refused,      ///< nobody listens
    OtherService, ///< another service sent data, which the link never does
    Reset,        ///< the connection was reset, for example because the host is ending
    TimedOut,     ///< somebody listens, but did nothing until the deadline
};

/// How long a caller keeps its sending direction open. Many services do not answer once they have seen the end of the
/// input. The dialog reacts to the connection itself, so only the caller waits.
inline constexpr std::chrono::milliseconds kHalfCloseDelay{50};

/// Calls the starter link on `port` of this machine and waits for the result until `deadline`.
///
/// The connection itself is the call. A line is sent and, after `halfCloseDelay`, the sending direction closed. The
/// link ignores the line and closes the connection without sending data, once the dialog has come to the front; most
/// other services send something. One that also closes without sending data cannot be told from a link.
///
/// Tries 127.0.0.1 first, then ::1, which may be the only one. Blocks; needs no event loop.
LinkAnswer CallLink(quint16 port, QDeadlineTimer deadline, std::chrono::milliseconds halfCloseDelay = kHalfCloseDelay);
