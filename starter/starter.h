// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "files/filelock.h"
#include "platform/starterport.h"
#include "starter/hostprocess.h"
#include "starter/linkcall.h"
#include "starter/starterexit.h"

#include <QDeadlineTimer>
#include <QString>
#include <QStringList>

#include <chrono>
#include <memory>
#include <optional>

/// Runs the starter once: calls the running dialog, or starts a host and calls that.
///
/// Many starters at the same time start one host: the one that gets the lock file starts it, and the others wait for
/// its link. The lock file is per user, in a folder that the starter creates for this user alone; one that others can
/// enter is not used. Between users, or without a lock file, the host's own lock decides: if a host ends because
/// another one uses its configuration directory, that one is called instead.
///
/// A link sends nothing, so any program that closes the connection without sending data is taken for a dialog.
class Starter
{
public:
    /// A host that is started is asked to write why it fails to `errorFile`; without one it tells the user itself.
    struct Settings
    {
        quint16 port = kStarterPort;
        QString lockFile;                     ///< held from before the host is started until it answers
        QString errorFile;                    ///< in a folder like the lock file's; removed at the end; empty: none
        QString host;                         ///< the host's program, an absolute path
        QStringList hostArguments;            ///< passed to the host unchanged
        std::chrono::milliseconds timeOut{0}; ///< for the whole run
        bool callOnly = false;                ///< start nothing
    };
    struct Outcome
    {
        StarterExit code;
        QString message; ///< an error in one line; empty on success
    };

    explicit Starter(Settings settings);
    ~Starter();

    Starter(const Starter&) = delete;
    Starter& operator=(const Starter&) = delete;

    /// Does everything from start to end. Blocks; needs no event loop.
    Outcome Run();

    /// Returns the lock file that all starters of this user share for `port`, in the user's cache folder.
    static QString DefaultLockFile(quint16 port);
    /// Returns the error file beside the lock file.
    static QString DefaultErrorFile(quint16 port);
    /// Returns the host that is installed with the starter in `programDirectory`.
    static QString DefaultHost(const QString& programDirectory);

private:
    /// Returns the outcome that `answer` alone decides; none if a host may have to be awaited or started.
    std::optional<Outcome> OutcomeOf(LinkAnswer answer);
    /// Does the next step while nobody answers. Returns none if the call should be repeated.
    std::optional<Outcome> StartOrCheckHost();
    std::optional<Outcome> Start();
    bool TryLock();
    void CreateErrorFile();
    QString HostError() const;
    Outcome TimedOut() const;
    QString Seconds() const;

    const Settings m_settings;
    const QDeadlineTimer m_deadline;
    FileLock m_lock;
    bool m_isLocked = false;
    std::unique_ptr<HostProcess> m_pHost;
    QString m_errorFile;            // exists while not empty
    QDeadlineTimer m_nextStart;     // expired: start at once
    int m_resetCount = 0;           // consecutive calls that were reset
    bool m_hasOtherHost = false;    // another program uses the configuration directory
    QString m_otherHostError;       // what the host that found it says
    bool m_hasOtherStarter = false; // another starter has the lock
};
