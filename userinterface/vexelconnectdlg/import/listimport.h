// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "userinterface/vexelconnectdlg/connection.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <future>
#include <optional>
#include <vector>

class AppCounter;
class ConnectionFilterModel;
class ConnectionsModel;
class ImportProgress;
class QWidget;
struct ImportedList;

/// Replaces all entries of the list by those of a file. GUI thread only.
///
/// Handles events while it imports a large file: a box over the window shows how far it has come, and the user can
/// cancel. Then the old entries are back. The destructor cancels and rolls back.
class ListImport : public QObject
{
    Q_OBJECT

public:
    enum class Result {
        Done,
        Cancelled, ///< by the user, by one of the functions below, or because this object was destroyed
        NoFile,    ///< there is no such file, or it is too large; the entries are unchanged
        Malformed  ///< the list has the entries before an error; `Fail` and `RollBack` are to be called
    };

    /// The other objects are not owned and must exist as long as this one.
    ListImport(QWidget* window, ConnectionsModel* model, ConnectionFilterModel* proxyModel, AppCounter* appCounter);
    ~ListImport() override;

    Result Run(const QString& fileName);
    /// Cancels the import that is running. It ends when the events have been handled.
    void Cancel();
    /// Lets `RollBack` restore the entries from before the import that has failed, all of them "Free".
    void Fail();
    /// Restores the entries from before an import that has begun to replace them, which cancels it, or that has failed.
    /// Does nothing at other times.
    void RollBack();
    /// Returns the document of the entries that `RollBack` would restore; empty if it would do nothing.
    QByteArray EntriesBefore() const;

private:
    std::optional<ImportedList> Read(const QString& fileName, ImportProgress* progress);
    bool ReplaceEntries(ImportedList& list, ImportProgress* progress);

    struct Backup
    {
        std::vector<Connection> entries;
        bool isImportFailed = false;
        mutable QByteArray document = {}; // empty: not yet needed
    };
    QWidget* m_pWindow = nullptr;
    ConnectionsModel* m_pModel = nullptr;
    ConnectionFilterModel* m_pProxyModel = nullptr;
    AppCounter* m_pAppCounter = nullptr;
    std::optional<Backup> m_backup;                     // while an import replaces the entries, or has failed
    ImportProgress* m_pProgress = nullptr;              // while events are handled
    std::vector<std::future<void>> m_cancelledReadings; // their threads use the code of the plug-in
};
