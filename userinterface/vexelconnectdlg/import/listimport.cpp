// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/import/listimport.h"

#include "process/background.h"
#include "process/freememory.h"
#include "userinterface/vexelconnectdlg/appcounter.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/filter/connectionfilter.h"
#include "userinterface/vexelconnectdlg/formats/connectionlist.h"
#include "userinterface/vexelconnectdlg/import/importedlist.h"
#include "userinterface/vexelconnectdlg/import/importprogress.h"

#include <QFileInfo>
#include <QPointer>
#include <QScopeGuard>
#include <QTimer>
#include <QWidget>

#include <chrono>
#include <memory>
#include <utility>

ListImport::ListImport(QWidget* window, ConnectionsModel* model, ConnectionFilterModel* proxyModel,
                       AppCounter* appCounter)
    : QObject(window)
    , m_pWindow(window)
    , m_pModel(model)
    , m_pProxyModel(proxyModel)
    , m_pAppCounter(appCounter)
{
}

ListImport::~ListImport()
{
    Cancel();
    RollBack();
    for (const std::future<void>& reading : m_cancelledReadings)
        reading.wait();
}

ListImport::Result ListImport::Run(const QString& fileName)
{
    constexpr qint64 kShortFile = qint64{1024} * 1024; // bytes, which take some milliseconds
    std::unique_ptr<ImportProgress> progress;
    if (QFileInfo(fileName).size() > kShortFile)
        progress = std::make_unique<ImportProgress>(m_pWindow, tr("Import Connection Settings"),
                                                    tr("Importing connection entries..."));
    const QPointer<ListImport> guard(this);
    const auto forget = qScopeGuard([&] {
        if (guard && m_pProgress == progress.get())
            m_pProgress = nullptr;
    });
    // cppcheck-suppress danglingLifetime ; "forget" ends it with the function
    m_pProgress = progress.get();
    std::optional<ImportedList> list = Read(fileName, progress.get());
    if (!list)
        return Result::Cancelled;
    if (!list->isReadable)
        return Result::NoFile;
    if (!ReplaceEntries(*list, progress.get()))
        return Result::Cancelled;
    if (!list->isWhole)
        return Result::Malformed;
    m_backup.reset();
    if (progress)
        QTimer::singleShot(std::chrono::seconds(1), this, ReturnFreeMemory); // when the window has been painted
    return Result::Done;
}

/// Returns none if the import was cancelled. This object may then be destroyed.
std::optional<ImportedList> ListImport::Read(const QString& fileName, ImportProgress* progress)
{
    struct Reading
    {
        ReadingProgress progress;
        ImportedList list;
    };
    const auto reading = std::make_shared<Reading>();
    const auto read = [reading, fileName, column = m_pProxyModel->sortColumn()] {
        reading->list = ImportedList::Read(fileName, column, reading->progress);
    };
    if (!progress) {
        read();
        return std::move(reading->list);
    }
    const QPointer<ListImport> guard(this);
    std::future<void> done = RunInBackground(read);
    const auto isDone = [&done] {
        return done.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    };
    if (progress->WaitFor(isDone, [&] { progress->Show(reading->progress.entries, reading->progress.total); }))
        return std::move(reading->list);
    reading->progress.isUnwanted = true;
    if (guard)
        m_cancelledReadings.push_back(std::move(done));
    else
        done.wait();
    return std::nullopt;
}

/// Takes the entries out of `list`. Returns false if the import was cancelled. The old entries are then back, or this
/// object is destroyed.
bool ListImport::ReplaceEntries(ImportedList& list, ImportProgress* progress)
{
    constexpr int kEntriesAtATime = 5'000; // some milliseconds
    const QPointer<ListImport> guard(this);
    const auto handleEvents = [progress] {
        return !progress || progress->HandleEvents();
    };
    m_backup = Backup{m_pModel->GetConnections()};
    // The entry of an application that ends meanwhile may be in the backup only.
    m_pAppCounter->HoldSweeps();
    const auto release = qScopeGuard([&] {
        if (guard)
            m_pAppCounter->ReleaseSweeps();
    });
    const auto replace = [&] {
        const int count = static_cast<int>(list.entries.size());
        if (!handleEvents())
            return false;
        m_pModel->removeRows(0, m_pModel->rowCount());
        for (int row = 0; row < count; ++row) {
            if (row % kEntriesAtATime == 0 && !handleEvents())
                return false;
            m_pModel->AddConnection(list.entries[static_cast<std::size_t>(row)]);
        }
        list.entries = {};
        for (int first = 0; first < count; first += kEntriesAtATime) {
            if (!handleEvents())
                return false;
            m_pModel->ResetConnectionStatus(first, kEntriesAtATime);
        }
        return handleEvents();
    };
    m_pProxyModel->BeginLoading();
    bool isReplaced = replace();
    if (isReplaced) {
        if (m_pProxyModel->sortColumn() != list.rankedColumn)
            list.ranks.clear();
        m_pProxyModel->EndLoading(std::move(list.ranks));
        // Once more, so that the views have laid out the entries before the box closes.
        isReplaced = handleEvents();
    }
    if (!isReplaced && guard)
        RollBack();
    return isReplaced;
}

/// Lets an import that handles events end when these have been handled.
void ListImport::Cancel()
{
    if (ImportProgress* const import = std::exchange(m_pProgress, nullptr))
        import->Cancel();
}

void ListImport::Fail()
{
    if (!m_backup)
        m_backup = Backup{m_pModel->GetConnections()};
    m_backup->isImportFailed = true;
}

void ListImport::RollBack()
{
    if (const std::optional<Backup> backup = std::exchange(m_backup, std::nullopt)) {
        Cancel();
        m_pProxyModel->BeginLoading();
        m_pModel->removeRows(0, m_pModel->rowCount());
        for (const Connection& entry : backup->entries)
            m_pModel->AddConnection(entry);
        if (backup->isImportFailed)
            m_pModel->ResetConnectionStatus();
        else if (!backup->entries.empty()) // for the dialog's button
            emit m_pModel->dataChanged(m_pModel->index(0, ConnectionsModel::ColumnStatus),
                                       m_pModel->index(m_pModel->rowCount() - 1, ConnectionsModel::ColumnStatus));
        m_pProxyModel->EndLoading();
    }
}

QByteArray ListImport::EntriesBefore() const
{
    if (!m_backup)
        return {};
    if (m_backup->document.isEmpty()) {
        std::vector<const Connection*> entries;
        entries.reserve(m_backup->entries.size());
        for (const Connection& entry : m_backup->entries)
            entries.push_back(&entry);
        m_backup->document = ConnectionList::Write(entries);
    }
    return m_backup->document;
}
