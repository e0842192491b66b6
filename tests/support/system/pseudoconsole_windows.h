// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

/// An invisible console in which a test starts programs. The destructor closes it, and programs that still run in it
/// are notified as if a user had closed the console window.
class PseudoConsole
{
public:
    PseudoConsole();
    ~PseudoConsole();

    PseudoConsole(const PseudoConsole&) = delete;
    PseudoConsole& operator=(const PseudoConsole&) = delete;

    /// Starts `commandLine` as from a prompt: a console program starts it without redirection, waits for it, and
    /// returns its exit code. Call once per object. Returns false if the console or the program is not available.
    bool Start(const QString& commandLine);
    bool HasEnded() const;
    int ExitCode() const;

    /// The text shown so far, without colours and cursor positions.
    QString Text();

private:
    struct Private;
    std::unique_ptr<Private> d;
};
