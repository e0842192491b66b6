#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

/// A console that nobody sees, with what a test starts in it. What still runs there when it is closed is told so, as
/// when a person closes the window of a console.
class PseudoConsole
{
public:
    PseudoConsole();
    ~PseudoConsole();

    PseudoConsole(const PseudoConsole&) = delete;
    PseudoConsole& operator=(const PseudoConsole&) = delete;

    /// Starts `commandLine` from the prompt, as it were: by a program of the console that redirects nothing, waits for
    /// its end and ends with its exit code. Once per object. False: there is no such console here, or no such program.
    bool Start(const QString& commandLine);
    bool HasEnded() const;
    int ExitCode() const;

    /// What the console has shown since the start, without colours and places.
    QString Text();

private:
    struct Private;
    std::unique_ptr<Private> d;
};
