// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QMessageBox>
#include <QObject>
#include <QPointer>

/// Shows messages in a non-modal box: the dialog stays usable, and can be shown and hidden, while the box is open.
class NoticeBox : public QObject
{
    Q_OBJECT

public:
    explicit NoticeBox(QObject* parent = nullptr);
    /// Closes an open box.
    ~NoticeBox() override;

    /// Shows `text`; appends it if the box is already open.
    void Show(const QString& text, QMessageBox::Icon icon = QMessageBox::Warning);

private:
    QPointer<QMessageBox> m_pBox;
};
