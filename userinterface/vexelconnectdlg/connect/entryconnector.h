// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "userinterface/vexelconnectdlg/connect/eventbreak.h"

#include <QList>
#include <QPersistentModelIndex>
#include <QPointer>

#include <functional>

class AppCounter;
class ConnectionsModel;

/// Connects some of the entries: writes the legacy records, then starts an application for each entry that is wanted
/// and "Free", in the model's order.
///
/// If it takes longer than a user notices, events are handled meanwhile (see `EventBreak`): before the first start and
/// between two starts. Records that have changed by then are written again. Sweeps are held during a break. For one
/// use, in the GUI thread.
class EntryConnector
{
public:
    using Wanted = std::function<bool(const QModelIndex& entry)>;
    using Records = std::function<void(const std::function<bool()>& whileWaiting)>;

    /// `writeRecords` writes the legacy records, and calls `whileWaiting` meanwhile, until that returns false. Nothing
    /// is owned. `model` and `appCounter` exist as long as `dialog`, which may be destroyed while this runs.
    EntryConnector(const QObject& dialog, ConnectionsModel& model, AppCounter& appCounter, Wanted isWanted,
                   Records writeRecords);

    /// Returns when the applications have been started, or if all entries that were still to connect are removed.
    /// Returns false if it ended early, because the program is told to end or `dialog` is destroyed.
    bool Run();

private:
    bool IsToConnect(const QModelIndex& entry) const;
    QList<QPersistentModelIndex> EntriesToConnect(int firstRow) const;
    bool WriteChangedRecords();
    QList<QPersistentModelIndex> ConnectUntilBreak(int row);
    bool TakeBreak();

    const QPointer<const QObject> m_pDialog;
    ConnectionsModel& m_model;
    AppCounter& m_appCounter;
    const Wanted m_isWanted;
    const Records m_writeRecords;
    EventBreak m_break;
    bool m_areRecordsOld = true;
    bool m_goesOn = true; // after the last break: the dialog exists, and the program is not about to end
};
