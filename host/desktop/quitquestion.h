#pragma once

#include <QMessageBox>
#include <QObject>
#include <QPointer>

/// Asks whether the host shall end although something is lost with it: entries are in use, or the last changes could
/// not be saved. Does not wait for the answer, so that everything else, such as a request of the system to end, goes on
/// meanwhile.
class QuitQuestion : public QObject
{
    Q_OBJECT

public:
    explicit QuitQuestion(QObject* parent = nullptr);
    /// An open question goes unanswered.
    ~QuitQuestion() override;

    /// Shows the box; one that is open already comes to the front. `inUse` is the number of entries in use.
    void Ask(int inUse);
    /// The same where the configuration could not be saved.
    void AskUnsaved();

signals:
    void Answered(bool quit);

private:
    void Open(const QString& text);

    QPointer<QMessageBox> m_pBox;
};
