#pragma once

#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <optional>

/// A host that was started to live on by itself: it outlasts who started it, and that one's terminal.
///
/// It gets the current directory and environment, nothing else: no pipe, no file, no console. The object only watches
/// it; its end does nothing to the process.
class HostProcess
{
public:
    /// How a process ended.
    struct End
    {
        int exitCode = 0; ///< where it ended by itself
        QString crash;    ///< what ended it where it did not, as "signal 11"; empty otherwise
    };

    HostProcess() = default;
    ~HostProcess();

    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;

    /// Starts the program `file`, an absolute path, with `arguments`, which arrive as they are. No shell is involved.
    /// Once per object. Returns why it could not be started; empty when it was.
    QString Start(const QString& file, const QStringList& arguments);
    /// Nothing while it runs.
    std::optional<End> Ended();
    qint64 Id() const { return m_iId; }

private:
    qint64 m_iId = 0;
    qintptr m_handle = 0; // on Windows the process, owned
    std::optional<End> m_end;
};
