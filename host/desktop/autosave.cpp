// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/desktop/autosave.h"

#include "platform/cfgcenter.h"
#include "process/background.h"

#include <QPointer>

#include <chrono>
#include <utility>

using namespace std::chrono_literals;

AutoSave::AutoSave(const ConnectDialog& dialog, Save save, QObject* parent)
    : QObject(parent)
    , m_dialog(dialog)
    , m_save(std::move(save))
{
    m_timer.setObjectName(QStringLiteral("m_autoSaveTimer"));
    m_timer.setParent(this);
    m_timer.setSingleShot(true);
    m_timer.setInterval(3s); // one save, and so one version, for a burst of changes
    connect(&m_timer, &QTimer::timeout, this, &AutoSave::Start);

    const QAbstractItemModel* const entries = dialog.Entries();
    connect(entries, &QAbstractItemModel::dataChanged, this, &AutoSave::OnDataChanged);
    connect(entries, &QAbstractItemModel::rowsInserted, this, &AutoSave::OnChange);
    connect(entries, &QAbstractItemModel::rowsRemoved, this, &AutoSave::OnChange);
    connect(entries, &QAbstractItemModel::layoutChanged, this, &AutoSave::OnChange);
}

AutoSave::~AutoSave()
{
    if (m_text.valid())
        m_text.wait();
}

void AutoSave::SaveNow()
{
    m_timer.stop();
    Start();
}

void AutoSave::Cancel()
{
    m_timer.stop();
    ++m_run;
    m_isChanged = false;
    m_isDue = false;
}

void AutoSave::OnChange()
{
    m_isChanged = true;
    constexpr std::chrono::milliseconds kLongestBurst = std::chrono::minutes(1);
    if (!m_timer.isActive())
        m_firstChange.start();
    if (!m_firstChange.hasExpired(kLongestBurst.count()))
        m_timer.start();
}

void AutoSave::OnDataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight)
{
    m_isChanged = true;
    const int status = static_cast<int>(EntryColumn::Status);
    if (topLeft.column() != status || bottomRight.column() != status)
        OnChange();
}

void AutoSave::Start()
{
    // A very long list takes seconds.
    m_isDue = m_isBusy;
    if (m_isBusy)
        return;
    if (!std::exchange(m_isChanged, false)) {
        SaveStored();
        return;
    }
    ListCopy list = m_dialog.Copy();
    const QByteArray before = std::exchange(m_beforeImport, list.document);
    if (!list.document.isEmpty()) {
        // Nothing announces that the import is over.
        OnChange();
        if (list.document == before) {
            SaveStored();
            return;
        }
    }
    m_isBusy = true;
    const int run = ++m_run;
    m_text = RunInBackground([this, run, list = std::move(list)] {
        const StoredText text = ToStoredText(list);
        QMetaObject::invokeMethod(
            this,
            [this, run, text] {
                m_isBusy = false;
                if (run == m_run)
                    Write(text);
                if (m_isDue)
                    Start();
            },
            Qt::QueuedConnection);
    });
}

void AutoSave::Write(const StoredText& text)
{
    WriteStoredSet(*CfgCenter::GetAppCfg(View::Application), text);
    SaveStored();
}

void AutoSave::SaveStored()
{
    m_save([self = QPointer(this)](const QString& error) {
        if (self)
            emit self->Saved(error);
    });
}
