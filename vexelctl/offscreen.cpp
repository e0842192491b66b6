// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "vexelctl/offscreen.h"

#include "control/controladdress.h"
#include "control/controlline.h"
#include "control/controlreply.h"
#include "control/controlserver.h"
#include "host/commands/dialogcommands.h"
#include "host/commands/dialoghost.h"
#include "host/commands/dialogpicture.h"
#include "host/output/console.h"
#include "host/output/notices.h"
#include "host/plugin/connectdialog.h"
#include "host/plugin/pluginsession.h"
#include "host/plugin/statusmonitor.h"
#include "host/system/signalwatcher.h"
#include "platform/instancelock.h"
#include "userinterface/vexelconnectdlg/formats/connectionlist.h"
#include "vexelctl/hostrequest.h"
#include "vexelctl/output.h"

#include <QCoreApplication>
#include <QList>

#include <optional>
#include <utility>

namespace {

constexpr int kSignalBase = 128;

/// Gives the answer to a request to this process.
class LocalReply : public ControlReply
{
    Q_OBJECT

public:
    explicit LocalReply(ControlClient::Receiver onLine)
        : m_onLine(std::move(onLine))
    {
    }

    void Send(const QJsonObject& line) override
    {
        if (TypeOf(line) == QLatin1String("message"))
            Console::PrintError(line.value(QLatin1String("text")).toString());
        else
            m_onLine(line);
    }
    void SendLines(const QByteArray& lines) override
    {
        const QList<QByteArray> list = lines.split('\n');
        for (const QByteArray& line : list)
            if (const std::optional<QJsonObject> object = ControlLine::Read(line))
                Send(*object);
    }
    void End(int code, const QString& error) override
    {
        if (!error.isEmpty())
            Console::PrintError(error);
        emit Ended(code);
    }

signals:
    void Ended(int code); // NOLINT(readability-inconsistent-declaration-parameter-name): of moc

private:
    const ControlClient::Receiver m_onLine;
};

/// The program around a dialog that nobody sees.
class Host : public DialogHost
{
public:
    Host(PluginSession& session, const ConnectDialog& dialog)
        : m_session(session)
        , m_dialog(dialog)
    {
    }

    QString Save() override { return m_session.Save(); }
    QString ShowDialog() override { return QStringLiteral("vexelctl connects entries, and shows no dialog"); }
    QByteArray Picture(QString* error) override { return EnlargedDialogPicture(m_dialog, error); }
    void Quit() override
    {
        Console::PrintError(QStringLiteral("ended by \"quit\""));
        QCoreApplication::exit(static_cast<int>(ExitCode::Busy));
    }

private:
    PluginSession& m_session;
    const ConnectDialog& m_dialog;
};

ExitCode Execute(const CtlOptions& options, PluginSession& session, const ConnectDialog& dialog,
                 const InstanceLock& lock, const QJsonObject& request, const ControlClient::Receiver& onLine)
{
    Host host(session, dialog);
    const SignalWatcher signalWatcher;
    QObject::connect(
        &signalWatcher, &SignalWatcher::QuitRequested, qApp,
        [](int signal) { QCoreApplication::exit(kSignalBase + signal); });
    QObject::connect(&signalWatcher, &SignalWatcher::SessionEnding, qApp, [&host] { host.Save(); });

    DialogCommands commands(dialog, host);
    ControlServer server(ConnectionList::kMaximumSize, QStringLiteral("vexelctl"));
    QObject::connect(&server, &ControlServer::Requested, &commands, &DialogCommands::Execute);
    const QString address = NewControlAddress(options.configDirectory);
    if (server.Listen(address).isEmpty())
        lock.SetAddress(address);

    // Deleted before the commands, as the answer of a peer that has gone.
    LocalReply reply(onLine);
    StatusMonitor monitor(dialog);
    const auto endWhenFree = [&monitor](int code) {
        // Others may have connected entries, too, whose applications would end with this process.
        const auto end = [&monitor, code] {
            if (monitor.CountInUse() == 0)
                QCoreApplication::exit(code);
        };
        QObject::connect(&monitor, &StatusMonitor::InUseChanged, &monitor, end);
        end();
    };
    QObject::connect(&reply, &LocalReply::Ended, &monitor, endWhenFree);
    // Inside the event loop, so that a request to quit reaches every nested loop.
    QMetaObject::invokeMethod(
        &commands,
        [&] {
            commands.Execute({request, {}}, &reply);
        },
        Qt::QueuedConnection);
    const int code = QCoreApplication::exec();
    server.Close();
    return static_cast<ExitCode>(code);
}

void PrintFailure(FailureKind, const QString& error)
{
    Console::PrintError(error);
}

} // namespace

namespace OffScreen {

ExitCode Run(const CtlOptions& options, const InstanceLock& lock, const QJsonObject& request,
             const ControlClient::Receiver& onLine)
{
    Notices notices;
    PluginSession session(options, PluginSession::Mode::Headless, notices, PrintFailure);
    if (!session.LoadPlugin())
        return ExitCode::Unusable;
    return session.Run(
        [&](const ConnectDialog& dialog) { return Execute(options, session, dialog, lock, request, onLine); });
}

ExitCode GetPicture(const CtlOptions& options, QByteArray& picture)
{
    Notices notices;
    PluginSession session(options, PluginSession::Mode::ReadOnly, notices, PrintFailure);
    if (!session.LoadPlugin())
        return ExitCode::Unusable;
    return session.Run([&picture](const ConnectDialog& dialog) {
        QString error;
        picture = EnlargedDialogPicture(dialog, &error);
        return error.isEmpty() ? ExitCode::Done : Fail(ExitCode::Unusable, error);
    });
}

} // namespace OffScreen

#include "offscreen.moc"
