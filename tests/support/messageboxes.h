// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QList>
#include <QMessageBox>
#include <QPushButton>
#include <QString>
#include <QTimer>

/// Answers all message boxes shown during its lifetime, and records their texts.
///
/// A modal box runs its own event loop, so a timer answers it. Each box gets the next answer of
/// `Answer`'s list; where the list is empty or the box lacks that button, its default or else its first button.
/// Other modal windows are left alone.
class MessageBoxes
{
public:
    struct Box
    {
        QString title;
        QString text;
        QString informativeText;
        Qt::TextFormat textFormat;
        QMessageBox::Icon icon;
        QMessageBox::StandardButtons buttons;
        bool modal;
        bool hasParent;
    };

    MessageBoxes()
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { AnswerActive(); });
        m_timer.start(1);
    }

    MessageBoxes(const MessageBoxes&) = delete;
    MessageBoxes& operator=(const MessageBoxes&) = delete;

    /// Appends `button` to the list of answers.
    void Answer(QMessageBox::StandardButton button) { m_answers.append(button); }

    /// The boxes answered so far, oldest first.
    const QList<Box>& Boxes() const { return m_boxes; }
    qsizetype Count() const { return m_boxes.size(); }
    void Clear() { m_boxes.clear(); }

private:
    void AnswerActive()
    {
        auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        // A box that is already closing stays the active one until its event loop has returned.
        if (!box || !box->isVisible())
            return;
        m_boxes.append({box->windowTitle(), box->text(), box->informativeText(), box->textFormat(), box->icon(),
                        box->standardButtons(), box->isModal(), box->parentWidget() != nullptr});

        QAbstractButton* button = m_answers.isEmpty() ? nullptr : box->button(m_answers.takeFirst());
        if (!button)
            button = box->defaultButton();
        if (!button && !box->buttons().isEmpty())
            button = box->buttons().constFirst();
        if (button)
            button->click();
        else
            box->reject();
    }

    QTimer m_timer;
    QList<QMessageBox::StandardButton> m_answers;
    QList<Box> m_boxes;
};
