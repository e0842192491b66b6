#include "host/desktop/dialogsession.h"

#include "host/output/notices.h"
#include "host/plugin/connectdialog.h"

#include <QGuiApplication>

#include <utility>

DialogSession::DialogSession(const ConnectDialog& dialog, Notices& notices, Save save, QObject* parent)
    : QObject(parent)
    , m_notices(notices)
    , m_save(std::move(save))
    , m_monitor(dialog.Entries())
    , m_keeper(dialog, m_monitor)
    , m_tray(m_monitor, this)
{
    connect(&m_keeper, &DialogVisibility::DialogHidden, this, &DialogSession::SaveHidden);
    connect(&m_keeper, &DialogVisibility::EndWanted, this, &DialogSession::SaveAndEnd);
    connect(&m_keeper, &DialogVisibility::EndNeedsAnswer, &m_question, &QuitQuestion::Ask);
    connect(&m_keeper, &DialogVisibility::StaysHidden, this, &DialogSession::OnStaysHidden);
    connect(&m_keeper, &DialogVisibility::WentToTray, this, &DialogSession::OnWentToTray);

    m_keeper.SetTrayAvailable(m_tray.IsAvailable());
    connect(&m_tray, &TrayIcon::AvailabilityChanged, &m_keeper, &DialogVisibility::SetTrayAvailable);
    connect(&m_tray, &TrayIcon::DialogWanted, &m_keeper, &DialogVisibility::ShowDialog);
    connect(&m_tray, &TrayIcon::SaveWanted, this, &DialogSession::SaveNow);
    connect(&m_tray, &TrayIcon::EndWanted, &m_keeper, &DialogVisibility::AskToEnd);

    connect(&m_question, &QuitQuestion::Answered, this, [this](bool quit) {
        if (quit)
            SaveAndEnd();
        else
            m_keeper.DecideLater();
    });
    connect(&m_unsavedQuestion, &QuitQuestion::Answered, this, [this](bool quit) {
        m_isAskedUnsaved = false;
        // Who stays wants to do something about it, such as an export to another disk.
        if (quit)
            emit EndWanted();
        else
            m_keeper.ShowDialog();
    });

    // At the end of a session the process may get no further than this.
    connect(
        qApp, &QGuiApplication::commitDataRequest, this, [this] { m_save(); }, Qt::DirectConnection);
}

DialogSession::~DialogSession()
{
    m_notices.ShowThrough({});
}

void DialogSession::Start()
{
    m_keeper.ShowDialog();
    m_notices.ShowThrough([this](const QString& text) { Tell(text); });
}

void DialogSession::SaveHidden()
{
    if (m_save())
        return;
    // Once it is known whether the end is to follow, which is asked about then.
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (!m_isAskedUnsaved)
                m_notices.ShowUnread(tr("The configuration could not be saved."));
        },
        Qt::QueuedConnection);
}

void DialogSession::SaveAndEnd()
{
    if (m_save()) {
        emit EndWanted();
    } else {
        m_isAskedUnsaved = true;
        m_unsavedQuestion.AskUnsaved();
    }
}

void DialogSession::Tell(const QString& text)
{
    if (m_tray.CanTell())
        m_tray.Tell(text, QSystemTrayIcon::Warning);
    else
        m_noticeBox.Tell(text);
}

void DialogSession::OnStaysHidden(int inUse)
{
    m_notices.Say(
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
    m_tray.Tell(tr("The connect dialog stays here until you choose \"Quit\"."), QSystemTrayIcon::Information);
}

void DialogSession::SaveNow()
{
    if (!m_save())
        m_tray.Tell(tr("The configuration could not be saved."), QSystemTrayIcon::Critical);
}
