// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QElapsedTimer>

/// Handles events now and then during an operation of the GUI thread that takes longer than a user should notice.
///
/// Anything may happen in a break that a user or another program can do, also the same operation once more, and the
/// destruction of every object: afterwards the caller checks what it uses.
class EventBreak
{
public:
    EventBreak() { m_clock.start(); }

    /// Whether events have not been handled for so long that it is time for a break.
    bool IsDue() const;

    /// Handles the events that are waiting. Returns false if the program's event loop has been told to end.
    bool Take();

private:
    QElapsedTimer m_clock; // since the last break
};
