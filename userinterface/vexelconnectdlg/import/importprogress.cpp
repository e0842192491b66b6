// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/import/importprogress.h"

#include <QCoreApplication>
#include <QProgressBar>
#include <QProgressDialog>
#include <QTimer>

#include <chrono>

using namespace std::chrono_literals;

ImportProgress::ImportProgress(QWidget* window, const QString& title, const QString& label)
    : m_pBox(new QProgressDialog(window))
    , m_pBar(new QProgressBar)
{
    m_time.start();
    m_pBox->setWindowTitle(title);
    m_pBox->setLabelText(label);
    m_pBox->setMinimumWidth(m_pBox->fontMetrics().averageCharWidth() * 50); // for the title
    // QProgressDialog::setValue() would handle events, and then access a box that they may have destroyed.
    m_pBox->setBar(m_pBar);
    Show(0, 0);
    m_pBox->setWindowModality(Qt::WindowModal);
    m_pBox->setAttribute(Qt::WA_DontShowOnScreen);
    m_pBox->show();
}

ImportProgress::~ImportProgress()
{
    delete m_pBox;
}

bool ImportProgress::WaitFor(const std::function<bool()>& isDone, const std::function<void()>& update)
{
    constexpr int kBoxHasAppeared = 1;
    QEventLoop loop;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &loop, [&] {
        if (IsCancelled() || isDone())
            return loop.quit();
        update();
        if (ShowBoxWhenDue())
            loop.exit(kBoxHasAppeared);
    });
    timer.start(5ms);
    while (loop.exec(Handled()) == kBoxHasAppeared) {
        // Once more, now with what the user does.
    }
    m_isCancelled = IsCancelled() || !isDone();
    return !m_isCancelled;
}

bool ImportProgress::HandleEvents()
{
    ShowBoxWhenDue();
    QCoreApplication::processEvents(Handled());
    return !IsCancelled();
}

void ImportProgress::Show(int value, int maximum)
{
    if (!m_pBar)
        return;
    m_pBar->setMaximum(maximum);
    m_pBar->setValue(qMin(value, maximum));
}

bool ImportProgress::IsCancelled() const
{
    // Escape, the button and the window's frame all hide it.
    return m_isCancelled || !m_pBox || !m_pBox->isVisible();
}

bool ImportProgress::ShowBoxWhenDue()
{
    constexpr std::chrono::milliseconds kDelay = 1s;
    if (m_isBoxShown || !m_pBox || !m_time.hasExpired(kDelay.count()))
        return false;
    m_isBoxShown = true;
    m_pBox->hide();
    m_pBox->setAttribute(Qt::WA_DontShowOnScreen, false);
    m_pBox->show();
    return true;
}

QEventLoop::ProcessEventsFlags ImportProgress::Handled() const
{
    return m_isBoxShown ? QEventLoop::AllEvents : QEventLoop::ExcludeUserInputEvents;
}
