// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QObject>

#include <memory>

/// Turns the operating system's termination requests (interrupt, terminate, end of the terminal or session) into a
/// signal on the GUI thread, so that the host can save first. Only one object may exist.
///
/// A request that arrives before the event loop runs is emitted when it does. Signals that were ignored at start-up
/// stay ignored.
class SignalWatcher : public QObject
{
    Q_OBJECT

public:
    explicit SignalWatcher(QObject* parent = nullptr);
    /// Restores the previous signal handling.
    ~SignalWatcher() override;

signals:
    /// `signal` is SIGINT, SIGTERM or SIGHUP; on Windows SIGINT for Ctrl+C and SIGTERM for everything else.
    void QuitRequested(int signal);
    /// The session is ending, and the process may be ended as soon as this returns: connect directly, and save. If
    /// there is time left, `QuitRequested` follows. Windows only; elsewhere the end of a session is an ordinary
    /// request.
    void SessionEnding();

private:
    struct Private;
    std::unique_ptr<Private> d;
};
