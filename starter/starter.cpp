// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "starter/starter.h"

#include "files/boundedfile.h"
#include "files/privatefile.h"
#include "host/output/exitcode.h"
#include "process/foreground.h"
#include "process/textline.h"
#include "starter/privatefolder.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QThread>

#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr auto kPollInterval = 50ms;
// After a host gave way to another one, which may be about to end.
constexpr auto kRestartDelay = 500ms;
// A host that is ending resets its connections and then refuses new ones. One that is flooded with calls may drop a
// caller, but hardly the same one again.
constexpr int kMaxResets = 5;
constexpr qint64 kMaxErrorSize = qint64{64} * 1024;

QString InCacheFolder(quint16 port, QLatin1String suffix)
{
    return QStringLiteral("%1/kitestarter/%2%3")
        .arg(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation), QString::number(port), suffix);
}

} // namespace

Starter::Starter(Settings settings)
    : m_settings(std::move(settings))
    , m_deadline(m_settings.timeOut)
{
}

Starter::~Starter()
{
    if (!m_errorFile.isEmpty())
        QFile::remove(m_errorFile);
}

QString Starter::DefaultLockFile(quint16 port)
{
    return InCacheFolder(port, QLatin1String(".lock"));
}

QString Starter::DefaultErrorFile(quint16 port)
{
    return InCacheFolder(port, QLatin1String(".error"));
}

QString Starter::DefaultHost(const QString& programDirectory)
{
    return programDirectory + QStringLiteral("/" VEXEL_HOST_FILE);
}

Starter::Outcome Starter::Run()
{
    // Any program, because the link's owner is not known before it has answered.
    AllowForegroundActivation();
    for (;;) {
        const LinkAnswer answer = CallLink(m_settings.port, m_deadline);
        if (const auto outcome = OutcomeOf(answer))
            return *outcome;
        // A call that was reset reached a process, which may still be there.
        if (answer == LinkAnswer::Refused) {
            if (const auto outcome = StartOrCheckHost())
                return *outcome;
        }
        if (m_deadline.hasExpired())
            return TimedOut();
        QThread::msleep(static_cast<unsigned long>(kPollInterval.count()));
    }
}

std::optional<Starter::Outcome> Starter::OutcomeOf(LinkAnswer answer)
{
    m_resetCount = answer == LinkAnswer::Reset ? m_resetCount + 1 : 0;
    switch (answer) {
    case LinkAnswer::Accepted:
        return Outcome{StarterExit::Called, {}};
    case LinkAnswer::OtherService:
        return Outcome{StarterExit::PortTaken,
                       QStringLiteral("another program uses port %1 and sends data, which a connect dialog does not; "
                                      "no dialog can be called or started")
                           .arg(m_settings.port)};
    case LinkAnswer::TimedOut:
        return TimedOut();
    case LinkAnswer::Refused:
        if (m_settings.callOnly)
            return Outcome{StarterExit::NotRunning, QStringLiteral("no connect dialog is running")};
        break;
    case LinkAnswer::Reset:
        if (m_resetCount == kMaxResets) {
            return Outcome{StarterExit::PortTaken,
                           QStringLiteral("another program uses port %1 and resets every connection, which a connect "
                                          "dialog does not; no dialog can be called or started")
                               .arg(m_settings.port)};
        }
        break;
    }
    return std::nullopt;
}

std::optional<Starter::Outcome> Starter::StartOrCheckHost()
{
    if (!m_pHost) {
        if (!m_nextStart.hasExpired())
            return std::nullopt;
        if (m_isLocked)
            return Start();
        // Another starter's host may have come up between the call and the lock: call once more before starting one.
        m_isLocked = TryLock();
        return std::nullopt;
    }

    const std::optional<HostProcess::ExitStatus> status = m_pHost->Poll();
    if (!status)
        return std::nullopt;
    const bool hasCrashed = !status->crash.isEmpty();
    // It has brought the dialog of a running host to the front.
    if (!hasCrashed && status->exitCode == static_cast<int>(ExitCode::Done))
        return Outcome{StarterExit::Called, {}};
    const QString error = HostError();
    if (!hasCrashed && status->exitCode == static_cast<int>(ExitCode::Busy)) {
        // The other one is starting and will answer, or is ending, so that another start will succeed.
        m_hasOtherHost = true;
        m_otherHostError = error;
        m_pHost.reset();
        // Without an error file the host has shown a message box, which must not appear again and again.
        m_nextStart = m_errorFile.isEmpty() ? QDeadlineTimer(QDeadlineTimer::Forever) : QDeadlineTimer(kRestartDelay);
        return std::nullopt;
    }
    const QString end = hasCrashed ? QStringLiteral("crashed (%1)").arg(status->crash)
                                   : QStringLiteral("ended with exit code %1").arg(status->exitCode);
    if (!error.isEmpty())
        return Outcome{StarterExit::HostEnded, QStringLiteral("%1 %2: %3").arg(m_settings.host, end, error)};
    return Outcome{
        StarterExit::HostEnded,
        QStringLiteral("%1 %2 before its dialog answered; run it directly to see why").arg(m_settings.host, end)};
}

std::optional<Starter::Outcome> Starter::Start()
{
    CreateErrorFile();
    m_pHost = std::make_unique<HostProcess>();
    const QString error = m_pHost->Start(m_settings.host, m_settings.hostArguments, m_errorFile);
    if (error.isEmpty())
        return std::nullopt;
    return Outcome{StarterExit::NotStarted, QStringLiteral("cannot start %1: %2").arg(m_settings.host, error)};
}

/// Takes the lock. Returns false if another starter has it.
bool Starter::TryLock()
{
    // Only another starter's lock is waited for. If locking is impossible, the host's own lock has to do. In a folder
    // that is open to others, one of them could hold the lock forever.
    if (!EnsurePrivateFolder(QFileInfo(m_settings.lockFile).path()))
        return true;
    QString error;
    m_hasOtherStarter = m_lock.TryLock(m_settings.lockFile, &error) == FileLock::Result::Busy;
    return !m_hasOtherStarter;
}

/// Creates the empty file for the host's error, where only this user can put files.
void Starter::CreateErrorFile()
{
    const QString& file = m_settings.errorFile;
    if (file.isEmpty() || !EnsurePrivateFolder(QFileInfo(file).path()))
        return;
    // That of a starter that was killed, or of the host started before.
    QFile::remove(file);
    m_errorFile = CreatePrivateFile(file) ? file : QString();
}

/// Returns what the ended host has written about its failure, in one line; empty if nothing.
QString Starter::HostError() const
{
    const std::optional<QByteArray> text =
        m_errorFile.isEmpty() ? std::nullopt : ReadRegularFile(m_errorFile, kMaxErrorSize);
    return text ? OneLine(QString::fromUtf8(*text).trimmed()) : QString();
}

Starter::Outcome Starter::TimedOut() const
{
    // First, because a host that is just being started has said nothing yet.
    if (m_hasOtherHost) {
        return {StarterExit::HostEnded,
                QStringLiteral("another program uses the same configuration directory, but no dialog answered on port "
                               "%1 within %2")
                        .arg(m_settings.port)
                        .arg(Seconds()) +
                    (m_otherHostError.isEmpty() ? QString() : QStringLiteral(": ") + m_otherHostError)};
    }
    if (m_pHost) {
        return {StarterExit::NoAnswer,
                QStringLiteral("%1 was started (process %2), but its dialog did not answer within %3; it is left "
                               "running")
                    .arg(m_settings.host)
                    .arg(m_pHost->Id())
                    .arg(Seconds())};
    }
    if (m_hasOtherStarter) {
        return {StarterExit::NoAnswer,
                QStringLiteral("another kitestarter is starting a host, but no dialog answered on port %1 within %2")
                    .arg(m_settings.port)
                    .arg(Seconds())};
    }
    return {StarterExit::PortTaken,
            QStringLiteral("port %1 is in use, but no dialog answered within %2: another program uses it, or the "
                           "dialog is busy or hangs; no second dialog was started")
                .arg(m_settings.port)
                .arg(Seconds())};
}

QString Starter::Seconds() const
{
    return QStringLiteral("%1 s").arg(static_cast<double>(m_settings.timeOut.count()) / 1000);
}
