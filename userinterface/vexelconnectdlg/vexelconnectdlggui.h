// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "ui_vexelconnectdlg.h"
#include "userinterface/vexelconnectdlg/legacyconnectdata.h"

#include <QByteArray>
#include <QDialog>
#include <QList>
#include <QModelIndex>
#include <QVariantMap>

#include <functional>

class AppCounter;
class ConnectionFilterModel;
class ConnectionsDelegate;
class ConnectionsModel;
class ListImport;
class QMenu;
class SynchronizedScrolling;

/// The connect dialog: shows the list of connection entries in two synchronised views and lets the operator change it.
///
/// The basic view shows tick, name, status and device type; the details view beside it shows the other columns. Both
/// share rows, order, selection and scroll position. The dialog can be hidden and shown again without losing state. The
/// destructor stores the filter's inputs. GUI thread only.
class VexelConnectDlgGUI : public QDialog, public Ui::VexelConnectDlg
{
    Q_OBJECT
    /// For a host that stores the list: the document of the entries from before an import that has begun to replace
    /// them, or that has failed and whose message box is still open. Empty at other times.
    Q_PROPERTY(QByteArray entriesBeforeImport READ EntriesBeforeImport)

public:
    /// `model` and `appCounter` are not owned. Both must exist as long as the dialog is used, the model until the
    /// dialog is destroyed.
    VexelConnectDlgGUI(QWidget* parent, ConnectionsModel* model, AppCounter* appCounter);
    ~VexelConnectDlgGUI() override;

    /// Replaces all entries by those of the file. On failure, also if the list would be larger than the largest one
    /// (see `ConnectionList`), shows a message box and keeps the entries, except that their statuses become "Free".
    /// Returns whether the entries were replaced.
    ///
    /// Handles events while it imports a large file: a box shows how far it has come, and the user can cancel, which
    /// keeps the entries as they are. So does another import and the destruction of the dialog meanwhile.
    bool Import(const QString& fileName);
    /// Restores the entries from before an import that has begun to replace them, which cancels it, or that has failed
    /// and whose message box is still open. Until then the list has entries read from the file, possibly none. Call
    /// before storing the list. Does nothing at other times.
    void RollBackImport();
    QByteArray EntriesBeforeImport() const;
    /// Writes all entries to the file. On failure, which is only traced, the file is unchanged; see
    /// `ReplaceRegularFile` for the exceptions.
    void Export(const QString& fileName);

    /// Writes all entries to the configuration, as the legacy records of the user-interface applications, and saves it.
    ///
    /// Returns when they are saved, or if `whileWaiting` returns false; see `ExportLegacyConnectData`.
    void WriteLegacyConnectData(const std::function<bool()>& whileWaiting = [] { return true; });

    /// For the host: returns which application serves the entry in `row` of the model. Empty if there is none.
    ///
    /// "program" (QString) is the file that was started, "process" (qint64) the number of its process and "since"
    /// (QDateTime) the time of its start. While the model reports that the entry becomes "Free", the map also has how
    /// the application ended: either "exitCode" (int), or "crashed" (true) and on Unix "signal" (int).
    Q_INVOKABLE QVariantMap ApplicationOf(int row) const;

    /// For the host: like `SlotConnect` for the entries in `rows` of the model, whether they are ticked or not. Returns
    /// false if it ended early because the program is told to end or the dialog is destroyed.
    Q_INVOKABLE bool ConnectEntries(const QList<int>& rows);

    /// Also called by the host when it stores the list itself.
    Q_INVOKABLE void StoreFilterSettings();
    void RestoreFilterSettings();

    /// Also shows a minimised dialog as it was before.
    void setVisible(bool visible) override;

public slots:
    void SlotNew();
    void SlotEdit();
    void SlotDelete();
    void SlotImport();
    void SlotExport();
    void SlotShowDetails(bool bShow);
    void SlotShowFilter(bool bShow);
    void SlotClicked(QModelIndex index);
    void SlotDoubleClicked(QModelIndex index);
    void SlotClose();
    /// Hides the dialog, saves the legacy records, and starts an application for every entry that is ticked and "Free",
    /// in the model's order. When this returns, they have been started.
    ///
    /// If it takes longer than a user notices, events are handled meanwhile; see `EntryConnector`. Entries stay "In
    /// Use" that long even if their application has ended. Another call connects what is left; an entry starts once. It
    /// ends early if the program is told to end, if the dialog is destroyed, and if all entries that were still to
    /// connect are removed, as an import does. The dynamic property "isConnecting" (bool) tells the host.
    void SlotConnect();
    void SlotUpdateFilter();
    void SlotDataChanged(QModelIndex topLeft, QModelIndex bottomRight);

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void SetUpViews();
    void FillFilterColumns();
    void UpdateFilterColumns();
    void ApplyFilter();
    void UpdateFilterSign();
    void DistributeColumns();
    void SetUpHeaders();
    /// Connects the free entries for which `isWanted` returns true; see `SlotConnect` and `ConnectEntries`.
    bool ConnectWhere(std::function<bool(const QModelIndex& entry)> isWanted);
    void ShowInfo(const QString& text);

    ListImport* m_pImport = nullptr;
    SynchronizedScrolling* m_pScrolling = nullptr;
    bool m_bStayMinimized = false; // the next setVisible() is that of showMinimized()
    QMenu* m_pContextMenu = nullptr;
    QList<int> m_basicColumns;
    ConnectionsModel* m_pModel = nullptr;
    ConnectionFilterModel* m_pProxyModel = nullptr;
    ConnectionsDelegate* m_pDelegate = nullptr;
    AppCounter* m_pAppCounter = nullptr;
};
