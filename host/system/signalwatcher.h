#pragma once

#include <QObject>

#include <memory>

/// Turns the operating system's requests to end (interrupt, terminate, and the end of the terminal or the session)
/// into a signal on the GUI thread, so that the host can save before it goes. One object at a time.
///
/// A request that arrives before the event loop runs is announced as soon as it does. A request that the process was
/// started to ignore stays ignored.
class SignalWatcher : public QObject
{
    Q_OBJECT

public:
    explicit SignalWatcher(QObject* parent = nullptr);
    /// Gives the operating system's own handling back.
    ~SignalWatcher() override;

signals:
    void EndRequested();
    /// The session ends, and the process may end with it as soon as this returns: connect to it directly, and save.
    /// Where there is time left, `EndRequested` follows. On Windows only; elsewhere the end of a session is a request
    /// like any.
    void SessionEnding();

private:
    struct Private;
    std::unique_ptr<Private> d;
};
