// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QElapsedTimer>
#include <QEventLoop>
#include <QPointer>
#include <QString>

#include <functional>

class QProgressBar;
class QProgressDialog;
class QWidget;

/// Keeps a window painted while it imports, and after a second shows a box with which the user can cancel.
///
/// The box is modal to the window from the beginning, so that nothing else can be done with the list meanwhile. What
/// the user types or clicks before the box appears is handled afterwards. The window may be destroyed at any time.
/// GUI thread only.
class ImportProgress
{
public:
    ImportProgress(QWidget* window, const QString& title, const QString& label);
    ~ImportProgress();

    ImportProgress(const ImportProgress&) = delete;
    ImportProgress& operator=(const ImportProgress&) = delete;

    /// Handles events until `isDone`, and shows how far the work has come. Returns false if it was cancelled, or if the
    /// application is about to quit.
    bool WaitFor(const std::function<bool()>& isDone, const std::function<void()>& update);
    /// Handles the events that have arrived. Returns false if the import was cancelled.
    bool HandleEvents();
    /// Shows that `value` of `maximum` is done; 0 of 0: nothing is known yet.
    void Show(int value, int maximum);

    void Cancel() { m_isCancelled = true; }
    bool IsCancelled() const;

private:
    /// Returns whether the box has just appeared.
    bool ShowBoxWhenDue();
    QEventLoop::ProcessEventsFlags Handled() const;

    QElapsedTimer m_time;
    QPointer<QProgressDialog> m_pBox;
    QPointer<QProgressBar> m_pBar;
    bool m_isBoxShown = false;
    bool m_isCancelled = false;
};
