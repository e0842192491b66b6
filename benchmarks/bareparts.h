#pragma once

#include "ui_vexelconnectdlg.h"
#include "userinterface/vexelconnectdlg/connection.h"

#include <QAbstractTableModel>
#include <QDialog>

#include <vector>

class QSortFilterProxyModel;

/// The least that can show a list in ten columns: texts in rows, and what a table model has to announce.
class BareTable : public QAbstractTableModel
{
public:
    using Row = std::vector<QString>;

    /// The rows that show `entries` as the product does.
    static std::vector<Row> Rows(const std::vector<Connection>& entries);

    /// Appends `rows` in one step.
    void Append(std::vector<Row> rows);
    /// Leaves no rows, by a reset.
    void Clear();
    /// Leaves no rows, by one removal of all.
    void RemoveAll();
    /// Takes every tenth row out, by a reset.
    void ClearTenth();
    /// Announces a change of `column` in `row`.
    void Touch(int row, int column);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

private:
    std::vector<Row> m_rows;
};

/// A window like the product's, with the same two views, and nothing in it but what Qt does by itself: a plain proxy,
/// plain delegates, headers that have a fixed width.
class BareWindow : public QDialog, private Ui::VexelConnectDlg
{
public:
    /// Shows `model`, which is not owned, and is ready when the constructor returns.
    explicit BareWindow(QAbstractItemModel* model);

    QSortFilterProxyModel* Proxy() const { return m_proxy; }
    /// Shows the place of the filter, which does nothing here.
    void ShowFilter() { m_pFilterFrame->show(); }
    QTreeView* BasicView() const { return m_pBasicView; }
    QTreeView* DetailsView() const { return m_pDetailsView; }

private:
    QSortFilterProxyModel* m_proxy = nullptr;
};

/// Lets the views of a window do all that they have left for later, painting included.
void Settle(QTreeView* basic, QTreeView* details);
