// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/desktop/noticebox.h"

NoticeBox::NoticeBox(QObject* parent)
    : QObject(parent)
{
}

NoticeBox::~NoticeBox()
{
    delete m_pBox;
}

void NoticeBox::Show(const QString& text, QMessageBox::Icon icon)
{
    if (m_pBox && m_pBox->isVisible()) {
        m_pBox->setText(m_pBox->text() + QStringLiteral("\n\n") + text);
    } else {
        delete m_pBox;
        // No parent: the dialog may be hidden.
        m_pBox = new QMessageBox(icon, tr("Vexel - Connect Dialog"), text, QMessageBox::Ok);
        m_pBox->setObjectName(QStringLiteral("m_noticeBox"));
        m_pBox->setAttribute(Qt::WA_DeleteOnClose);
        // The text contains file names, which must not be interpreted as markup.
        m_pBox->setTextFormat(Qt::PlainText);
        m_pBox->setModal(false);
        m_pBox->show();
    }
    m_pBox->raise();
    m_pBox->activateWindow();
}
