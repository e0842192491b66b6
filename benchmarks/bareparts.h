// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "ui_vexelconnectdlg.h"
#include "userinterface/vexelconnectdlg/connection.h"

#include <QAbstractTableModel>
#include <QDialog>

#include <vector>

class QSortFilterProxyModel;

/// A minimal table model for a list in ten columns: texts, and the signals that a table model must emit.
class BareTable : public QAbstractTableModel
{
public:
    using Row = std::vector<QString>;

    /// The rows for `entries`, with the same texts as in the product.
    static std::vector<Row> Rows(const std::vector<Connection>& entries);

    /// Appends `rows` in one step.
    void Append(std::vector<Row> rows);
    /// Removes all rows with a model reset.
    void Clear();
    /// Removes all rows with one removal.
    void RemoveAll();
    /// Removes every tenth row with a model reset.
    void ClearTenth();
    /// Emits dataChanged for one cell.
    void Touch(int row, int column);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

private:
    std::vector<Row> m_rows;
};

/// A window with the product's form and two views, but only Qt's own parts: plain proxy, plain delegates, header
/// sections with a fixed width.
class BareWindow : public QDialog, private Ui::VexelConnectDlg
{
public:
    /// Shows `model`, which is not owned. The window is visible and painted when the constructor returns.
    explicit BareWindow(QAbstractItemModel* model);

    QSortFilterProxyModel* Proxy() const { return m_proxy; }
    /// Shows the filter's frame, which has no function here.
    void ShowFilter() { m_pFilterFrame->show(); }
    QTreeView* BasicView() const { return m_pBasicView; }
    QTreeView* DetailsView() const { return m_pDetailsView; }

private:
    QSortFilterProxyModel* m_proxy = nullptr;
};

/// Processes all pending work of the views, including painting.
void Settle(QTreeView* basic, QTreeView* details);
