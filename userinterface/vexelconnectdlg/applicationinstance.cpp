// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/applicationinstance.h"

#include "platform/tracing.h"
#include "process/kill.h"

#include <QDir>

#include <utility>

namespace {

constexpr const char* kTraceSource = "userinterface/vexelconnectdlg/applicationinstance";

constexpr int kStartTimeoutMs = 30000;

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
        // Killing it emits `finished`, which must not reach this object any more.
        m_pProcess->disconnect(this);
        KillAndWait(*m_pProcess);
        delete m_pProcess;
    }
}

bool ApplicationInstance::Start()
{
    // The process of an earlier start, released or not, would otherwise leak.
    DropProcess();
    m_process = 0;
    m_startTime = {};
    m_end.reset();

    m_pProcess = new QProcess;
    connect(m_pProcess, &QProcess::finished, this, &ApplicationInstance::SlotProcessExited);

    if (QDir(m_sWorkingDirectory).exists()) {
        m_pProcess->setWorkingDirectory(m_sWorkingDirectory);
    } else {
        // Not passed to the process, which would fail to start.
        Trace(kTraceSource, __LINE__, [this] {
            return QStringLiteral("ApplicationInstance::Start(): Specified working directory does not exist: <%1>")
                .arg(m_sWorkingDirectory);
        });
    }

    // QProcess would buffer unread output in memory without limit.
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
    m_process = m_pProcess->processId();
    m_startTime = QDateTime::currentDateTime();
    SetState(Started);
    return true;
}

void ApplicationInstance::ReleaseInstance()
{
    if (m_state == Started) {
        // SetState() can set this state without a process.
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
    m_end = End{status, iCode};

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
    KillAndWait(*process);
    // Not deleted at once: its `finished` may be being handled.
    process->deleteLater();
}
