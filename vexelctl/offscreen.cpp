#include "vexelctl/offscreen.h"

#include "control/controladdress.h"
#include "control/controlline.h"
#include "control/controlserver.h"
#include "host/commands/dialogcommands.h"
#include "host/commands/dialoghost.h"
#include "host/commands/dialogpicture.h"
#include "host/output/console.h"
#include "host/output/qtmessages.h"
#include "host/plugin/connectdialog.h"
#include "host/system/desktop.h"
#include "host/system/signalwatcher.h"
#include "platform/instancelock.h"
#include "userinterface/vexelconnectdlg/connectionlist.h"

#include <QApplication>
#include <QEventLoop>

#include <array>
#include <memory>
#include <utility>

namespace {

std::unique_ptr<QApplication> MakeApplication(char* program)
{
    // Without a display, the applications that are started have none either. With one, they appear on it: the platform
    // of this process is then an argument, which they do not inherit.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && !HasDesktop())
        qputenv("QT_QPA_PLATFORM", "offscreen");
    static std::array<char, 10> option{"-platform"};
    static std::array<char, 10> offscreen{"offscreen"};
    static std::array<char*, 4> argv = {program, option.data(), offscreen.data(), nullptr};
    static int argc = qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") ? 3 : 1;
    argv[static_cast<std::size_t>(argc)] = nullptr;

    SuppressHeadlessWarnings();
    SetUpOffscreenFonts();
    const QtStartMessages messages;
    auto application = std::make_unique<QApplication>(argc, argv.data());
    ChooseOffscreenFont();
    return application;
}

/// The program around a dialog that nobody sees.
class OffScreenHost : public QObject, public DialogHost
{
    Q_OBJECT

public:
    OffScreenHost(const ConnectDialog& dialog, PluginSession& session)
        : m_dialog(dialog)
        , m_session(session)
    {
    }

    QString Save() override
    {
        if (!m_areSavesHeld)
            return m_session.Save();
        m_isSaveDue = true;
        return {};
    }
    QString ShowDialog() override { return QStringLiteral("vexelctl is at work there, and shows no dialog"); }
    QByteArray Picture(QString* error) override { return EnlargedDialogPicture(m_dialog, error); }
    void Quit() override { emit QuitRequested(); }
    void HoldSaves(bool isHeld) override
    {
        m_areSavesHeld = isHeld;
        if (!isHeld && std::exchange(m_isSaveDue, false))
            m_session.Save();
    }

signals:
    void QuitRequested();

private:
    const ConnectDialog& m_dialog;
    PluginSession& m_session;
    bool m_areSavesHeld = false;
    bool m_isSaveDue = false;
};

/// Passes an answer on within this process.
class LocalReply : public ControlReply
{
    Q_OBJECT

public:
    explicit LocalReply(const ControlClient::Receiver& onLine)
        : m_onLine(onLine)
    {
    }

    void Send(const QJsonObject& line) override { m_onLine(line); }
    void SendLines(const QByteArray& lines) override
    {
        const QList<QByteArray> list = lines.split('\n');
        for (const QByteArray& line : list)
            if (const auto object = ControlLine::Read(line))
                m_onLine(*object);
    }
    void End(int code, const QString& error) override { emit Ended(code, error); }

signals:
    void Ended(int code, const QString& error);

private:
    const ControlClient::Receiver& m_onLine;
};

struct Result
{
    int code = 0;
    QString error;
};

Result Execute(const ConnectDialog& dialog, PluginSession& session, const QJsonObject& request,
               const ControlClient::Receiver& onLine, const QString& address, const InstanceLock& lock)
{
    OffScreenHost host(dialog, session);
    DialogCommands commands(dialog, host);
    ControlServer server(ConnectionList::kMaximumSize, QStringLiteral("vexelctl"));
    QObject::connect(&server, &ControlServer::Requested, &commands, &DialogCommands::Execute);
    // Without it, others only have to wait.
    if (!address.isEmpty() && server.Listen(address).isEmpty())
        lock.SetAddress(address);

    Result result;
    LocalReply reply(onLine);
    QEventLoop loop;
    bool hasEnded = false;
    const auto end = [&](int code, const QString& error) {
        if (!std::exchange(hasEnded, true))
            result = {code, error};
        loop.quit();
    };
    SignalWatcher signalWatcher;
    QObject::connect(&reply, &LocalReply::Ended, &loop, end);
    QObject::connect(&signalWatcher, &SignalWatcher::QuitRequested, &loop,
                     [&end](int signal) { end(128 + signal, {}); });
    QObject::connect(&signalWatcher, &SignalWatcher::SessionEnding, &host, [&host] { host.Save(); });
    QObject::connect(&host, &OffScreenHost::QuitRequested, &loop,
                     [&end] { end(static_cast<int>(ExitCode::Busy), QStringLiteral("ended by \"quit\"")); });
    // Inside the event loop, so that an interrupt reaches every nested loop.
    QMetaObject::invokeMethod(
        &loop,
        [&] { commands.Execute({request, {}}, &reply); },
        Qt::QueuedConnection);
    loop.exec();
    return result;
}

} // namespace

int RunOffScreen(const SessionOptions& options, PluginSession::Mode mode, const QJsonObject& request,
                 const ControlClient::Receiver& onLine, QString* error, char* program)
{
    const std::unique_ptr<QApplication> application = MakeApplication(program);
    // "&Connect" hides the dialog.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    const auto fail = [error](ExitCode code, const QString& text) {
        *error = text;
        return static_cast<int>(code);
    };
    Notices notices;
    PluginSession session(options, mode, notices, [](StartFailure::Kind, const QString& text) { Console::PrintError(text); });
    if (!session.LoadPlugin())
        return static_cast<int>(ExitCode::Unusable);
    InstanceLock lock;
    const bool isReadOnly = mode == PluginSession::Mode::ReadOnly;
    if (!isReadOnly) {
        const InstanceLock::Result taken = lock.TryLock(options.configDirectory);
        if (taken != InstanceLock::Result::Locked)
            return fail(taken == InstanceLock::Result::Busy ? ExitCode::Busy : ExitCode::Unusable, lock.ErrorText());
        if (!lock.Warning().isEmpty())
            Console::PrintError(lock.Warning());
    }

    const QString address = isReadOnly ? QString() : NewControlAddress(options.configDirectory);
    Result result;
    const ExitCode code = session.Run([&](const ConnectDialog& dialog) {
        result = Execute(dialog, session, request, onLine, address, lock);
        return ExitCode::Done;
    });
    *error = result.error;
    return code == ExitCode::Done || result.code != 0 ? result.code : static_cast<int>(code);
}

#include "offscreen.moc"
