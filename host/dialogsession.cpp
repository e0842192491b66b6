#include "host/dialogsession.h"

#include "host/connectdialog.h"
#include "host/console.h"

#include <QGuiApplication>

#include <utility>

DialogSession::DialogSession(const ConnectDialog& dialog, Save save, QObject* parent)
    : QObject(parent)
    , m_Save(std::move(save))
    , m_Monitor(dialog.Entries())
    , m_Keeper(dialog, m_Monitor)
    , m_Tray(m_Monitor, this)
{
    connect(&m_Keeper, &DialogKeeper::DialogHidden, this, [this] { m_Save(); });
    connect(&m_Keeper, &DialogKeeper::EndWanted, this, &DialogSession::EndWanted);
    connect(&m_Keeper, &DialogKeeper::EndNeedsAnswer, &m_Question, &QuitQuestion::Ask);
    connect(&m_Keeper, &DialogKeeper::StaysHidden, this, &DialogSession::OnStaysHidden);
    connect(&m_Keeper, &DialogKeeper::WentToTray, this, &DialogSession::OnWentToTray);

    m_Keeper.SetTrayAvailable(m_Tray.IsAvailable());
    connect(&m_Tray, &TrayIcon::AvailabilityChanged, &m_Keeper, &DialogKeeper::SetTrayAvailable);
    connect(&m_Tray, &TrayIcon::DialogWanted, &m_Keeper, &DialogKeeper::ShowDialog);
    connect(&m_Tray, &TrayIcon::SaveWanted, this, &DialogSession::SaveNow);
    connect(&m_Tray, &TrayIcon::EndWanted, &m_Keeper, &DialogKeeper::AskToEnd);

    connect(&m_Question, &QuitQuestion::Answered, this, [this](bool quit) {
        if (quit)
            emit EndWanted();
        else
            m_Keeper.DecideLater();
    });

    // At the end of a session the process may get no further than this.
    connect(
        qApp, &QGuiApplication::commitDataRequest, this, [this] { m_Save(); }, Qt::DirectConnection);
}

void DialogSession::Start()
{
    m_Keeper.ShowDialog();
}

void DialogSession::OnStaysHidden(int inUse)
{
    Console::Complain(
        QStringLiteral("%1 still in use; the dialog comes back when the last application has ended, and kitestarter "
                       "brings it back at once")
            .arg(inUse == 1 ? QStringLiteral("1 entry is") : QStringLiteral("%1 entries are").arg(inUse)));
}

void DialogSession::OnWentToTray()
{
    m_Tray.Tell(tr("The connect dialog stays here until you choose \"Quit\"."), QSystemTrayIcon::Information);
}

void DialogSession::SaveNow()
{
    if (!m_Save())
        m_Tray.Tell(tr("The configuration could not be saved."), QSystemTrayIcon::Critical);
}
