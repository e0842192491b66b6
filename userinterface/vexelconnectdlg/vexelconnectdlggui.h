#pragma once

#include "ui_vexelconnectdlg.h"
#include "userinterface/vexelconnectdlg/legacyconnectdata.h"

#include <QByteArray>
#include <QDialog>
#include <QList>
#include <QModelIndex>

#include <optional>

class AppCounter;
class ConnectionsDelegate;
class ConnectionsModel;
class QMenu;
class QSortFilterProxyModel;

/// The connect dialog: the list of connection entries in two coupled views, with everything an operator can do to it.
///
/// The basic view shows tick, name, status and device type, the details view beside it the other columns of the same
/// rows; both share rows, order, selection and scroll position. Shown and hidden as often as wanted; all state lives on
/// while it is hidden. The filter's inputs are stored at destruction. GUI thread only.
class VexelConnectDlgGUI : public QDialog, public Ui::VexelConnectDlg
{
    Q_OBJECT

public:
    /// Neither `model` nor `appCounter` is owned; both must be there as long as the dialog is used, and the model until
    /// it is destroyed.
    VexelConnectDlgGUI(QWidget* parent, ConnectionsModel* model, AppCounter* appCounter);
    ~VexelConnectDlgGUI() override;

    /// Replaces all entries by those of the file. Whatever goes wrong is told in a box, and the entries stay as they
    /// were but for their statuses, which become "Free", and for characters that XML cannot hold. Returns whether the
    /// entries were replaced.
    bool Import(const QString& fileName);
    /// While the box about a failed import is open the list holds what the file gave, which may be nothing. Puts the
    /// entries back at once, for whoever stores the list in that moment; else does nothing.
    void SettleImport();
    /// Writes all entries into the file: after a failure, which is only traced, it is as it was before.
    void Export(const QString& fileName);

    /// Writes all entries in the form that the user-interface applications read, and saves them.
    void WriteLegacyConnectData();

    void StoreFilterSettings();
    void RestoreFilterSettings();

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
    void SlotConnect();
    void SlotUpdateFilter();
    void SlotDataChanged(QModelIndex topLeft, QModelIndex bottomRight);

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void CoupleViews();
    void AlignHeights();
    void FillColumnChoice();
    void UpdateColumnChoice();
    void ShareOutColumns();
    void SetUpHeaders();
    bool LoadEntries(const QByteArray& document);
    void ShowInfo(const QString& text);

    std::optional<QByteArray> m_entriesBeforeImport; // while the box about a failed import is open
    QMenu* m_pContextMenu = nullptr;
    QList<int> m_basicColumns;
    ConnectionsModel* m_pModel = nullptr;
    QSortFilterProxyModel* m_pProxyModel = nullptr;
    ConnectionsDelegate* m_pDelegate = nullptr;
    AppCounter* m_pAppCounter = nullptr;
};
