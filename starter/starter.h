#pragma once

#include "platform/starterport.h"
#include "starter/hostprocess.h"
#include "starter/linkcall.h"
#include "starter/starterexit.h"

#include <QDeadlineTimer>
#include <QLockFile>
#include <QString>
#include <QStringList>

#include <chrono>
#include <memory>
#include <optional>

/// One run of the starter: calls the dialog that is running, or starts a host and calls that.
///
/// Many starters at the same moment start one host: the one that holds the lock file starts it, and the others wait for
/// its link. The lock is for one user. Between two users' starters, and where it cannot be had, the host's own lock
/// decides: a host that ends because another has its configuration directory is no failure, its like is called instead.
class Starter
{
public:
    struct Settings
    {
        quint16 port = kStarterPort;
        QString lockFile;                     ///< held from when a host is started until it answers
        QString host;                         ///< the host's program, an absolute path
        QStringList hostArguments;            ///< passed to it as they are
        std::chrono::milliseconds timeOut{0}; ///< for all of it together
        bool callOnly = false;                ///< start nothing
    };
    struct Outcome
    {
        StarterExit code;
        QString message; ///< one line that says what went wrong; empty when nothing did
    };

    explicit Starter(Settings settings);

    /// Everything from start to end. Blocks; needs no event loop.
    Outcome Run();

    /// Where the starters of this user meet that call `port`.
    static QString DefaultLockFile(quint16 port);
    /// The host that is installed with the starter at `programDirectory`.
    static QString DefaultHost(const QString& programDirectory);

private:
    /// What the answer to a call means by itself; nothing when there may be a host that has to be waited for or
    /// started.
    std::optional<Outcome> Judge(LinkAnswer answer);
    /// Does what is due while nobody answers; nothing when it is to be called again.
    std::optional<Outcome> StartOrWatch();
    std::optional<Outcome> Start();
    bool IsLocked();
    Outcome TimedOut() const;
    QString Seconds() const;

    const Settings m_settings;
    const QDeadlineTimer m_deadline;
    QLockFile m_lock;
    bool m_bLocked = false;
    std::unique_ptr<HostProcess> m_pHost;
    QDeadlineTimer m_nextStart;   // expired: at once
    int m_iCutOffs = 0;           // calls cut off, one after the other
    bool m_bOtherHost = false;    // another host has the configuration directory
    bool m_bOtherStarter = false; // another starter has the lock
};
