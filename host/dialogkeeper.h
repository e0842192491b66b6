#pragma once

#include <QObject>

class ConnectDialog;
class StatusMonitor;

/// Decides what becomes of the host while its only window is hidden, so that a person never faces a host that cannot be
/// reached:
///
/// - The dialog was closed and no entry is in use: the host shall end.
/// - The dialog was closed while entries are in use: the host stays, and the dialog comes back when the last of them is
///   "Free" again.
/// - "&Connect" hid the dialog: it comes back when the last entry is "Free" again; at once when none could be
/// connected.
///
/// Nothing is decided while a message box is open. Shows the dialog by itself; everything else is announced.
class DialogKeeper : public QObject
{
    Q_OBJECT

public:
    /// Both must outlive the keeper.
    DialogKeeper(const ConnectDialog& dialog, const StatusMonitor& monitor, QObject* parent = nullptr);

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    /// The person is done with the dialog for now.
    void DialogHidden();
    void EndWanted();
    /// Said once each time: the dialog was closed, and the host stays because of `inUse` entries.
    void StaysHidden(int inUse);

private:
    enum class State {
        Shown,
        Closed, ///< hidden, and it is not yet decided what that means
        Waiting ///< hidden until nothing is in use
    };

    void OnConnectClicked();
    void Decide();
    void DecideLater();

    const ConnectDialog& m_Dialog;
    const StatusMonitor& m_Monitor;
    State m_State = State::Shown;
};
