// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "benchmarks/bareparts.h"

#include "userinterface/vexelconnectdlg/connectionsmodel.h"

#include <QCoreApplication>
#include <QHeaderView>
#include <QSortFilterProxyModel>
#include <QTreeView>

#include <utility>

std::vector<BareTable::Row> BareTable::Rows(const std::vector<Connection>& entries)
{
    std::vector<Row> rows;
    rows.reserve(entries.size());
    for (const Connection& entry : entries) {
        rows.push_back({entry.Selected ? QStringLiteral(" ") : QString(), entry.ConnectionName,
                        Connection::StatusName(entry.ConnectionStatus), Connection::DeviceTypeName(entry.DeviceType),
                        Connection::ConnectionTypeName(entry.ConnectionType), entry.DeviceAddress, entry.DriverAddress,
                        Connection::LinkSpeedName(entry.LinkSpeed), QString::number(entry.TimeoutSeconds),
                        entry.Subsystem});
    }
    return rows;
}

void BareTable::Append(std::vector<Row> rows)
{
    if (rows.empty())
        return;
    const int first = rowCount();
    beginInsertRows(QModelIndex(), first, first + static_cast<int>(rows.size()) - 1);
    m_rows.insert(m_rows.end(), std::make_move_iterator(rows.begin()), std::make_move_iterator(rows.end()));
    endInsertRows();
}

void BareTable::Clear()
{
    beginResetModel();
    m_rows.clear();
    endResetModel();
}

void BareTable::RemoveAll()
{
    beginRemoveRows(QModelIndex(), 0, rowCount() - 1);
    m_rows.clear();
    endRemoveRows();
}

void BareTable::ClearTenth()
{
    beginResetModel();
    std::size_t row = 0;
    std::erase_if(m_rows, [&row](const Row&) { return row++ % 10 == 0; });
    endResetModel();
}

void BareTable::Touch(int row, int column)
{
    const QModelIndex cell = index(row, column);
    emit dataChanged(cell, cell);
}

int BareTable::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int BareTable::columnCount(const QModelIndex& /*parent*/) const
{
    return ConnectionsModel::kColumnCount;
}

QVariant BareTable::data(const QModelIndex& index, int role) const
{
    if (role != Qt::DisplayRole || !index.isValid())
        return {};
    return m_rows[static_cast<std::size_t>(index.row())][static_cast<std::size_t>(index.column())];
}

BareWindow::BareWindow(QAbstractItemModel* model)
    : m_proxy(new QSortFilterProxyModel(this))
{
    setupUi(this);
    m_pFilterFrame->hide();
    m_proxy->setSourceModel(model);
    m_proxy->setFilterCaseSensitivity(Qt::CaseInsensitive);
    m_proxy->setFilterKeyColumn(ConnectionsModel::ColumnName);
    for (QTreeView* view : {m_pBasicView, m_pDetailsView}) {
        view->setModel(m_proxy);
        view->setUniformRowHeights(true);
        for (int column = 0; column < ConnectionsModel::kColumnCount; ++column) {
            const bool basic = column <= ConnectionsModel::ColumnDeviceType;
            view->setColumnHidden(column, basic != (view == m_pBasicView));
        }
        view->header()->setSortIndicator(ConnectionsModel::ColumnName, Qt::AscendingOrder);
    }
    resize(1200, 800);
    show();
    Settle(m_pBasicView, m_pDetailsView);
}

void Settle(QTreeView* basic, QTreeView* details)
{
    QCoreApplication::processEvents();
    basic->viewport()->repaint();
    details->viewport()->repaint();
}
