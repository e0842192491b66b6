// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "host/plugin/connectdialog.h"

#include <QDialog>
#include <QSortFilterProxyModel>
#include <QSplitter>
#include <QStandardItemModel>
#include <QTreeView>
#include <QVBoxLayout>

/// A dialog with the object names by which the host finds the plug-in's dialog, on a plain item model. `Add` and the
/// model set ticks, names and statuses.
///
/// The proxy sorts by name, so rows of the views differ from rows of the list.
class FakeDialog : public QDialog
{
public:
    FakeDialog()
        : entries(0, 10)
    {
        setObjectName(QStringLiteral("VexelConnectDlgGUI"));
        entries.setObjectName(QStringLiteral("ConnectionsModel"));
        QStringList headings;
        for (int column = 0; column < 10; ++column)
            headings.append(column == 0 ? QString() : QStringLiteral("Heading %1").arg(column));
        entries.setHorizontalHeaderLabels(headings);
        proxy.setSourceModel(&entries);
        proxy.setDynamicSortFilter(true);
        proxy.sort(1);

        auto* layout = new QVBoxLayout(this);
        auto* splitter = new QSplitter;
        layout->addWidget(splitter);
        for (const QString& name : {QStringLiteral("m_pBasicView"), QStringLiteral("m_pDetailsView")}) {
            auto* view = new QTreeView;
            view->setObjectName(name);
            view->setModel(&proxy);
            splitter->addWidget(view);
            views.append(view);
        }
    }

    void Add(const QString& name, bool ticked = false, int status = 0)
    {
        QList<QStandardItem*> cells;
        for (int column = 0; column < 10; ++column)
            cells.append(new QStandardItem(QStringLiteral("cell %1").arg(column)));
        cells[0]->setData(ticked, Qt::EditRole);
        cells[1]->setData(name, Qt::EditRole);
        cells[2]->setData(status, Qt::EditRole);
        entries.appendRow(cells);
    }

    void SetStatus(int row, int status) { entries.setData(entries.index(row, 2), status, Qt::EditRole); }
    void SetTicked(int row, bool ticked) { entries.setData(entries.index(row, 0), ticked, Qt::EditRole); }

    QStandardItemModel entries;
    QSortFilterProxyModel proxy;
    QList<QTreeView*> views;
};

/// The parts of the open fake dialog.
inline ConnectDialog FindDialog()
{
    QString error;
    const auto dialog = ConnectDialog::Find(error);
    if (!dialog)
        qFatal("%s", qPrintable(error));
    return *dialog;
}
