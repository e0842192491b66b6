#include "host/desktop/quitquestion.h"

#include <QPushButton>

QuitQuestion::QuitQuestion(QObject* parent)
    : QObject(parent)
{
}

QuitQuestion::~QuitQuestion()
{
    delete m_pBox;
}

void QuitQuestion::Ask(int inUse)
{
    const QString count = inUse == 1 ? tr("1 entry is in use.") : tr("%n entries are in use.", nullptr, inUse);
    Open(count + QStringLiteral("\n\n") + tr("Applications that were started from the connect dialog end with it."));
}

void QuitQuestion::AskUnsaved()
{
    Open(tr("The configuration could not be saved.") + QStringLiteral("\n\n") +
         tr("What was changed since it was last saved is lost when the connect dialog ends now."));
}

void QuitQuestion::Open(const QString& text)
{
    if (m_pBox) {
        m_pBox->raise();
        m_pBox->activateWindow();
        return;
    }
    // No parent: the dialog is most likely hidden.
    m_pBox = new QMessageBox(QMessageBox::Question, tr("Vexel - Connect Dialog"), text);
    m_pBox->setAttribute(Qt::WA_DeleteOnClose);
    const QPushButton* quit = m_pBox->addButton(tr("Quit"), QMessageBox::AcceptRole);
    QPushButton* cancel = m_pBox->addButton(tr("Cancel"), QMessageBox::RejectRole);
    // A key pressed by chance ends nothing.
    m_pBox->setDefaultButton(cancel);
    m_pBox->setEscapeButton(cancel);

    connect(m_pBox, &QMessageBox::finished, this, [this, quit] {
        const bool isQuit = m_pBox->clickedButton() == quit;
        // The one who hears the answer finds no box open any more.
        m_pBox->hide();
        m_pBox->deleteLater();
        m_pBox.clear();
        emit Answered(isQuit);
    });
    m_pBox->setModal(true);
    m_pBox->show();
    m_pBox->raise();
    m_pBox->activateWindow();
}
