// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QMessageBox>
#include <QObject>
#include <QPointer>

/// Asks whether to quit although entries are in use or the last changes could not be saved. Does not block, so that a
/// quit request from the system still works while the box is open.
class QuitQuestion : public QObject
{
    Q_OBJECT

public:
    explicit QuitQuestion(QObject* parent = nullptr);
    /// Closes an open box without an answer.
    ~QuitQuestion() override;

    /// Asks because `inUse` entries are in use. A box that is already open is brought to the front instead.
    void Ask(int inUse);
    /// Asks because the configuration could not be saved, for the reason `error`, likewise.
    void AskUnsaved(const QString& error);

signals:
    void Answered(bool quit);

private:
    void Open(const QString& text);

    QPointer<QMessageBox> m_pBox;
};
