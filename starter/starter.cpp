#include "starter/starter.h"

#include "files/regularfile.h"
#include "host/output/exitcode.h"
#include "starter/foreground.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QThread>

#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr auto kPause = 50ms;
// After a host that gave way to another one, which may be about to end.
constexpr auto kPauseBeforeNextStart = 500ms;
// A host that ends cuts off who is calling it, and cannot be reached after that. One that is called by very many at
// once may drop a caller, but hardly the same one again.
constexpr int kMostCutOffs = 5;
// Age from which a lock file that names no process counts as left behind. One that is held is never taken for that.
constexpr auto kStaleLockTime = 5s;

} // namespace

Starter::Starter(Settings settings)
    : m_settings(std::move(settings))
    , m_deadline(m_settings.timeOut)
    , m_lock(m_settings.lockFile)
{
    m_lock.setStaleLockTime(kStaleLockTime);
}

QString Starter::DefaultLockFile(quint16 port)
{
    const QString name = QStringLiteral("kitestarter-%1.lock").arg(port);
    const QString directory = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (QFileInfo(directory).isWritable())
        return directory + u'/' + name;
    // A folder of all users; the home folder's name tells them apart.
    return QStringLiteral("%1/%2-%3").arg(QDir::tempPath(), QDir::home().dirName(), name);
}

QString Starter::DefaultHost(const QString& programDirectory)
{
    return programDirectory + QStringLiteral("/" VEXEL_HOST_FILE);
}

Starter::Outcome Starter::Run()
{
    HandOverForeground();
    for (;;) {
        const LinkAnswer answer = CallLink(m_settings.port, m_deadline);
        if (const auto outcome = Judge(answer))
            return *outcome;
        // A call that was cut off reached somebody, who may still be there.
        if (answer == LinkAnswer::Refused) {
            if (const auto outcome = StartOrWatch())
                return *outcome;
        }
        if (m_deadline.hasExpired())
            return TimedOut();
        QThread::msleep(static_cast<unsigned long>(kPause.count()));
    }
}

std::optional<Starter::Outcome> Starter::Judge(LinkAnswer answer)
{
    m_iCutOffs = answer == LinkAnswer::CutOff ? m_iCutOffs + 1 : 0;
    switch (answer) {
    case LinkAnswer::Taken:
        return Outcome{StarterExit::Called, {}};
    case LinkAnswer::Foreign:
        return Outcome{StarterExit::Foreign,
                       QStringLiteral("another program has port %1 and answers there, which no connect dialog does; "
                                      "no dialog can be called or started beside it")
                           .arg(m_settings.port)};
    case LinkAnswer::Silent:
        return TimedOut();
    case LinkAnswer::Refused:
        if (m_settings.callOnly)
            return Outcome{StarterExit::NotRunning, QStringLiteral("no connect dialog is running")};
        break;
    case LinkAnswer::CutOff:
        if (m_iCutOffs == kMostCutOffs) {
            return Outcome{StarterExit::Foreign,
                           QStringLiteral("another program has port %1 and cuts off every call, which no connect "
                                          "dialog does; no dialog can be called or started beside it")
                               .arg(m_settings.port)};
        }
        break;
    }
    return std::nullopt;
}

std::optional<Starter::Outcome> Starter::StartOrWatch()
{
    if (!m_pHost) {
        if (!m_nextStart.hasExpired())
            return std::nullopt;
        if (m_bLocked)
            return Start();
        // Another starter's host may have come between the call and the lock, so it is called once more before one is
        // started.
        m_bLocked = IsLocked();
        return std::nullopt;
    }

    const std::optional<HostProcess::End> end = m_pHost->Ended();
    if (!end)
        return std::nullopt;
    if (end->crash.isEmpty() && end->exitCode == static_cast<int>(ExitCode::Running)) {
        // The other host is starting, and will answer; or it is ending, and leaves room for another try.
        m_bOtherHost = true;
        m_pHost.reset();
        m_nextStart = QDeadlineTimer(kPauseBeforeNextStart);
        return std::nullopt;
    }
    return Outcome{StarterExit::HostEnded,
                   QStringLiteral("%1 %2 before its dialog answered; started by itself it says why")
                       .arg(m_settings.host, end->crash.isEmpty()
                                                 ? QStringLiteral("ended with exit code %1").arg(end->exitCode)
                                                 : QStringLiteral("crashed (%1)").arg(end->crash))};
}

std::optional<Starter::Outcome> Starter::Start()
{
    m_pHost = std::make_unique<HostProcess>();
    const QString error = m_pHost->Start(m_settings.host, m_settings.hostArguments);
    if (error.isEmpty())
        return std::nullopt;
    return Outcome{StarterExit::NotStarted, QStringLiteral("cannot start %1: %2").arg(m_settings.host, error)};
}

/// Whether nobody else is starting a host, as far as the lock tells.
bool Starter::IsLocked()
{
    // Only another starter's lock is waited for. Where no lock can be had at all, the host's own has to do.
    m_bOtherStarter =
        !IsNotRegularFile(m_settings.lockFile) && !m_lock.tryLock(0) && m_lock.error() == QLockFile::LockFailedError;
    return !m_bOtherStarter;
}

Starter::Outcome Starter::TimedOut() const
{
    // First: another try that is just starting says nothing yet.
    if (m_bOtherHost) {
        return {StarterExit::HostEnded,
                QStringLiteral("another host works on the same configuration directory, but no dialog answered on port "
                               "%1 within %2")
                    .arg(m_settings.port)
                    .arg(Seconds())};
    }
    if (m_pHost) {
        return {StarterExit::NoAnswer,
                QStringLiteral("%1 was started (process %2), but its dialog did not answer within %3; it is left "
                               "running")
                    .arg(m_settings.host)
                    .arg(m_pHost->Id())
                    .arg(Seconds())};
    }
    if (m_bOtherStarter) {
        return {StarterExit::NoAnswer,
                QStringLiteral("another kitestarter is starting a host, but no dialog answered on port %1 within %2")
                    .arg(m_settings.port)
                    .arg(Seconds())};
    }
    return {StarterExit::Foreign,
            QStringLiteral("port %1 is in use, but no dialog answered there within %2: another program has it, or a "
                           "dialog that is busy or hangs; no second one is started")
                .arg(m_settings.port)
                .arg(Seconds())};
}

QString Starter::Seconds() const
{
    return QStringLiteral("%1 s").arg(static_cast<double>(m_settings.timeOut.count()) / 1000);
}
