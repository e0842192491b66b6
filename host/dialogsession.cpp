#include "host/dialogsession.h"

#include "host/connectdialog.h"
#include "host/notices.h"

#include <QGuiApplication>

#include <utility>

DialogSession::DialogSession(const ConnectDialog& dialog, Notices& notices, Save save, QObject* parent)
    : QObject(parent)
    , m_Notices(notices)
    , m_Save(std::move(save))
    , m_Monitor(dialog.Entries())
    , m_Keeper(dialog, m_Monitor)
    , m_Tray(m_Monitor, this)
{
    connect(&m_Keeper, &DialogKeeper::DialogHidden, this, &DialogSession::SaveHidden);
    connect(&m_Keeper, &DialogKeeper::EndWanted, this, &DialogSession::SaveAndEnd);
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
            SaveAndEnd();
        else
            m_Keeper.DecideLater();
    });
    connect(&m_UnsavedQuestion, &QuitQuestion::Answered, this, [this](bool quit) {
        m_IsAskedUnsaved = false;
        // Who stays wants to do something about it, such as an export to another disk.
        if (quit)
            emit EndWanted();
        else
            m_Keeper.ShowDialog();
    });

    // At the end of a session the process may get no further than this.
    connect(
        qApp, &QGuiApplication::commitDataRequest, this, [this] { m_Save(); }, Qt::DirectConnection);
}

DialogSession::~DialogSession()
{
    m_Notices.ShowThrough({});
}

void DialogSession::Start()
{
    m_Keeper.ShowDialog();
    m_Notices.ShowThrough([this](const QString& text) { Tell(text); });
}

void DialogSession::SaveHidden()
{
    if (m_Save())
        return;
    // Once it is known whether the end is to follow, which is asked about then.
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (!m_IsAskedUnsaved)
                m_Notices.ShowUnread(tr("The configuration could not be saved."));
        },
        Qt::QueuedConnection);
}

void DialogSession::SaveAndEnd()
{
    if (m_Save()) {
        emit EndWanted();
    } else {
        m_IsAskedUnsaved = true;
        m_UnsavedQuestion.AskUnsaved();
    }
}

void DialogSession::Tell(const QString& text)
{
    if (m_Tray.CanTell())
        m_Tray.Tell(text, QSystemTrayIcon::Warning);
    else
        m_NoticeBox.Tell(text);
}

void DialogSession::OnStaysHidden(int inUse)
{
    m_Notices.Say(
        QStringLiteral("%1 still in use; the dialog comes back when the last application has ended, and kitestarter "
                       "brings it back at once")
            .arg(inUse == 1 ? QStringLiteral("1 entry is") : QStringLiteral("%1 entries are").arg(inUse)),
        (inUse == 1 ? tr("1 entry is still in use.") : tr("%n entries are still in use.", nullptr, inUse)) +
            QStringLiteral("\n\n") +
            tr("The connect dialog comes back when the last application has ended; kitestarter brings it back at "
               "once."));
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
