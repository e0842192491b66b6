#include "userinterface/vexelconnectdlg/applicationinstance.h"

#include "platform/tracing.h"

#include <QDir>

#include <utility>

namespace {

constexpr const char* kTraceSource = "userinterface/vexelconnectdlg/applicationinstance";

constexpr int kStartTimeoutMs = 30000;

// A killed process ends at once, unless the system holds it up; then this one shall not wait for ever.
constexpr int kKillTimeoutMs = 30000;

/// Ends a process that still runs, and waits for its end, so that no child is left behind in any form.
void End(QProcess& process)
{
    if (process.state() != QProcess::NotRunning) {
        process.kill();
        process.waitForFinished(kKillTimeoutMs);
    }
}

} // namespace

ApplicationInstance::ApplicationInstance(QString program, QStringList arguments, QString workingDirectory,
                                         const Connection& connection)
    : m_sProgram(std::move(program))
    , m_arguments(std::move(arguments))
    , m_sWorkingDirectory(std::move(workingDirectory))
    , m_connection(connection)
{
}

ApplicationInstance::~ApplicationInstance()
{
    if (m_pProcess) {
        // Ending it makes it emit `finished`, for which this object is no longer there.
        m_pProcess->disconnect(this);
        End(*m_pProcess);
        delete m_pProcess;
    }
}

bool ApplicationInstance::Start()
{
    // A process of an earlier start, released or not, would otherwise be left without an owner.
    DropProcess();

    m_pProcess = new QProcess;
    connect(m_pProcess, &QProcess::finished, this, &ApplicationInstance::SlotProcessExited);

    if (QDir(m_sWorkingDirectory).exists()) {
        m_pProcess->setWorkingDirectory(m_sWorkingDirectory);
    } else {
        // Not handed to the process then: it would fail to start, where only its place is in question.
        Trace(kTraceSource, __LINE__, [this] {
            return QStringLiteral("ApplicationInstance::Start(): Specified working directory does not exist: <%1>")
                .arg(m_sWorkingDirectory);
        });
    }

    // Nobody here reads what the application prints, and unread output is kept in memory without bound.
    m_pProcess->setStandardOutputFile(QProcess::nullDevice());
    m_pProcess->setStandardErrorFile(QProcess::nullDevice());
    m_pProcess->start(m_sProgram, m_arguments, QIODevice::ReadWrite);

    if (!m_pProcess->waitForStarted(kStartTimeoutMs)) {
        Trace(kTraceSource, __LINE__, [this] {
            return QStringLiteral("ApplicationInstance::Start(): Application <%1> could not be started")
                .arg(m_sProgram);
        });
        ReleaseInstance();
        return false;
    }
    Trace(kTraceSource, __LINE__,
          [this] { return QStringLiteral("ApplicationInstance::Start(): Started application <%1>").arg(m_sProgram); });
    SetState(Started);
    return true;
}

void ApplicationInstance::ReleaseInstance()
{
    if (m_state == Started) {
        // The state can be set from outside as well, without a process.
        if (m_pProcess)
            m_pProcess->terminate();
        SetState(Free);
        return;
    }
    Trace(kTraceSource, __LINE__, [this] {
        return QStringLiteral("ApplicationInstance::ReleaseInstance() unknwon state %1").arg(int{m_state});
    });
    SetState(Free);
    DropProcess();
}

void ApplicationInstance::SetState(int state)
{
    if (state == m_state)
        return;
    Trace(kTraceSource, __LINE__, [this, state] {
        return QStringLiteral("ApplicationInstance::SetState: <%1> to <%2> for application <%3>.")
            .arg(StateName(m_state), StateName(state), m_sProgram);
    });
    m_state = static_cast<State>(state);
}

QString ApplicationInstance::GetHostName() const
{
    return m_arguments.isEmpty() ? QString() : m_arguments.constFirst().section(u':', 0, 0);
}

void ApplicationInstance::SlotProcessExited(int iCode, QProcess::ExitStatus status)
{
    if (!m_pProcess)
        return;

    if (status == QProcess::NormalExit) {
        Trace(
            kTraceSource, __LINE__,
            [this] {
                return QStringLiteral("ApplicationInstance::SlotProcessExited(): "
                                      "Received SlotProcessExited signal for application <%1>.")
                    .arg(m_sProgram);
            });
    } else {
        Trace(
            kTraceSource, __LINE__,
            [this, iCode] {
                return QStringLiteral("ApplicationInstance::SlotProcessExited(): "
                                      "abnormal exit with code <%1> of process <%2>.")
                    .arg(QString::number(iCode), m_sProgram);
            });
    }

    if (m_state == Started) {
        SetState(Free);
        DropProcess();
        emit ProcessExited();
    } else if (m_state == Error) {
        SetState(Free);
        DropProcess();
    }
}

QString ApplicationInstance::StateName(int state)
{
    switch (state) {
    case Free:
        return tr("Free");
    case Started:
        return tr("Started");
    case Error:
        return tr("Error");
    default:
        return QStringLiteral("Unknown state of ApplicationInstance");
    }
}

void ApplicationInstance::DropProcess()
{
    QProcess* const process = std::exchange(m_pProcess, nullptr);
    if (!process)
        return;
    process->disconnect(this);
    End(*process);
    // It may be the one whose `finished` is being handled.
    process->deleteLater();
}
