// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/desktop/quitquestion.h"

#include "host/desktop/unsavedtext.h"

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
    Open(count + QStringLiteral("\n\n") + tr("Applications started from the connect dialog will be closed."));
}

void QuitQuestion::AskUnsaved(const QString& error)
{
    Open(UnsavedText(error) + QStringLiteral("\n\n") + tr("Changes since the last save will be lost if you quit now."));
}

void QuitQuestion::Open(const QString& text)
{
    if (m_pBox) {
        m_pBox->raise();
        m_pBox->activateWindow();
        return;
    }
    // No parent: the dialog is usually hidden.
    m_pBox = new QMessageBox(QMessageBox::Question, tr("Vexel - Connect Dialog"), text);
    m_pBox->setAttribute(Qt::WA_DeleteOnClose);
    const QPushButton* quit = m_pBox->addButton(tr("Quit"), QMessageBox::AcceptRole);
    QPushButton* cancel = m_pBox->addButton(tr("Cancel"), QMessageBox::RejectRole);
    // An accidental key press must not quit.
    m_pBox->setDefaultButton(cancel);
    m_pBox->setEscapeButton(cancel);

    connect(m_pBox, &QMessageBox::finished, this, [this, quit] {
        const bool quitChosen = m_pBox->clickedButton() == quit;
        // Hidden before the signal, so that receivers do not find an open modal box.
        m_pBox->hide();
        m_pBox->deleteLater();
        m_pBox.clear();
        emit Answered(quitChosen);
    });
    m_pBox->setModal(true);
    m_pBox->show();
    m_pBox->raise();
    m_pBox->activateWindow();
}
