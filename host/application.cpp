// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/application.h"

#include "control/controladdress.h"
#include "control/controlclient.h"
#include "control/controlserver.h"
#include "host/commands/dialogcommands.h"
#include "host/desktop/dialogsession.h"
#include "host/desktop/operatorguide.h"
#include "host/output/console.h"
#include "host/plugin/connectdialog.h"
#include "host/plugin/datadirectory.h"
#include "host/plugin/pluginsession.h"
#include "host/system/signalwatcher.h"
#include "platform/instancelock.h"
#include "process/foreground.h"
#include "userinterface/vexelconnectdlg/formats/connectionlist.h"

#include <QApplication>

#include <utility>

Application::Application(HostOptions options)
    : m_options(std::move(options))
{
    SetDefaults(m_options);
}

ExitCode Application::Run()
{
    // The dialog is the only window, and "Close" and "&Connect" hide it.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    SignalWatcher signalWatcher;
    // Not QCoreApplication::quit(): it asks every window first, and any of them can refuse. Connected first, because a
    // start that fails waits for the user at a box.
    QObject::connect(
        &signalWatcher, &SignalWatcher::QuitRequested, qApp, [] { QCoreApplication::exit(); });

    PluginSession session(
        m_options, PluginSession::Mode::Desktop, m_notices,
        [this](StartFailure::Kind kind, const QString& error) { Fail(ExitCode::Unusable, kind, error); });
    if (!session.LoadPlugin())
        return ExitCode::Unusable;
    // Taken before anything is written, and held until everything has been.
    InstanceLock lock;
    switch (lock.TryLock(m_options.configDirectory)) {
    case InstanceLock::Result::Busy:
        return ShowRunningDialog();
    case InstanceLock::Result::Unusable:
        return Fail(ExitCode::Unusable, StartFailure::Kind::ConfigurationUnusable, lock.ErrorText());
    case InstanceLock::Result::Locked:
        break;
    }
    if (!lock.Warning().isEmpty())
        m_notices.Report(lock.Warning());
    return session.Run([&](const ConnectDialog& dialog) { return RunDialog(dialog, session, lock, signalWatcher); });
}

ExitCode Application::ShowRunningDialog()
{
    ControlClient client;
    const ControlClient::State state = client.Connect(m_options.configDirectory);
    QString error = state == ControlClient::State::NoHost ? QStringLiteral("another host has just ended; try again")
                                                          : client.Error();
    if (state == ControlClient::State::Connected) {
        AllowForegroundActivation(client.Greeting().value(QLatin1String("process")).toInteger());
        const int code = client.Run({{QStringLiteral("command"), QStringLiteral("show")}}, [](const QJsonObject&) {});
        if (code == static_cast<int>(ExitCode::Done))
            return ExitCode::Done;
        error = client.Error();
    }
    return Fail(ExitCode::Busy, StartFailure::Kind::ConfigurationBusy, error);
}

ExitCode Application::RunDialog(const ConnectDialog& dialog, PluginSession& session, const InstanceLock& lock,
                                SignalWatcher& signalWatcher)
{
    DialogSession desktop(
        dialog, m_notices, [&session] { return session.Save(); },
        [&session](auto done) { session.SaveAsync(std::move(done)); },
        {OperatorGuide::File(QCoreApplication::applicationDirPath()), m_options.autostartOptions});
    QObject::connect(&signalWatcher, &SignalWatcher::SessionEnding, &desktop, &DialogSession::Save);
    QObject::connect(&desktop, &DialogSession::QuitRequested, qApp, [] { QCoreApplication::exit(); });

    DialogCommands commands(dialog, desktop);
    ControlServer server(ConnectionList::kMaximumSize, QStringLiteral("vexelhost"));
    QObject::connect(&server, &ControlServer::Requested, &commands, &DialogCommands::Execute);
    const QString address = NewControlAddress(m_options.configDirectory);
    if (const QString error = server.Listen(address); error.isEmpty())
        lock.SetAddress(address);
    else
        m_notices.Report(QStringLiteral("vexelctl cannot speak with this host: %1").arg(error));

    desktop.Start(m_options.hidden);
    if (session.UsesSamples() && !DataDirectory::IsSamplesNoticeShown() && desktop.ShowSamplesAreUsed()) {
        Console::PrintError(QStringLiteral("no data directory is set, so the installed samples are used"));
        DataDirectory::SetSamplesNoticeShown();
    }
    QCoreApplication::exec();
    server.Close();
    return ExitCode::Done;
}

ExitCode Application::Fail(ExitCode code, StartFailure::Kind kind, const QString& error) const
{
    Console::PrintError(error);
    StartFailure::Report(kind, error, m_options.language);
    return code;
}
