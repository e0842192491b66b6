#pragma once

#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>
#include <QTimer>

class StatusMonitor;

/// The host's icon in the system tray: shows how many entries are in use, and offers what can be done without the
/// dialog. Where there is no tray the icon waits for one.
///
/// Does nothing by itself but say what is wanted.
class TrayIcon : public QObject
{
    Q_OBJECT

public:
    /// The monitor must outlive the icon.
    explicit TrayIcon(const StatusMonitor& monitor, QObject* parent = nullptr);

    /// Whether a person can see the icon.
    bool IsAvailable() const { return m_available; }

    /// Whether a message beside the icon can be seen.
    bool CanTell() const { return m_available && QSystemTrayIcon::supportsMessages(); }
    /// A message beside the icon; nothing where there is no tray.
    void Tell(const QString& text, QSystemTrayIcon::MessageIcon icon);

signals:
    /// The tray appeared or went; noticed a moment later, because most systems do not say.
    void AvailabilityChanged(bool bAvailable);
    void DialogWanted();
    void SaveWanted();
    void EndWanted();

private:
    void OnActivated(QSystemTrayIcon::ActivationReason reason);
    void Look();
    void ShowCount(int inUse);

    QMenu m_menu;
    QSystemTrayIcon m_icon;
    QTimer m_lookTimer;
    bool m_available = false;
};
