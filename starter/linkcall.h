#pragma once

#include <QDeadlineTimer>
#include <QtGlobal>

#include <chrono>

/// What became of a call.
enum class LinkAnswer {
    Taken,   ///< a dialog's link has taken it
    Refused, ///< nobody listens
    Foreign, ///< somebody answered in words, which the link never does
    CutOff,  ///< the connection broke off, as when a host ends while it is called
    Silent,  ///< somebody listens, but did nothing until the deadline
};

/// How long a caller keeps its sending direction open. Many services that would answer give up when they see its end
/// first. The dialog comes to the front at the connection, so this costs only the caller time.
inline constexpr std::chrono::milliseconds kHearingTime{50};

/// Calls the starter link at `port` of this machine, and waits for the answer until `deadline`.
///
/// The connection itself is the call. A line is sent along and, after `hearing`, the sending direction closed: the link
/// drops the line and closes the connection without a word, once the dialog has come to the front; most other services
/// answer one way or another. One that closes without a word as well cannot be told from a link.
///
/// 127.0.0.1 is called first, then ::1, where a machine has only that. Blocks; needs no event loop.
LinkAnswer CallLink(quint16 port, QDeadlineTimer deadline, std::chrono::milliseconds hearing = kHearingTime);
