// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/views/hiddenitems.h"

#include <QComboBox>
#include <QListView>
#include <QStandardItemModel>

void SetItemHidden(QComboBox* comboBox, int row, bool hidden)
{
    auto* const list = qobject_cast<QListView*>(comboBox->view());
    auto* const items = qobject_cast<QStandardItemModel*>(comboBox->model());
    if (!list || !items || !items->item(row))
        return;
    list->setRowHidden(row, hidden);
    // The closed combo box ignores hidden rows; only the missing flags make keys and wheel skip an item.
    items->item(row)->setFlags(hidden ? Qt::ItemFlags(Qt::NoItemFlags) : Qt::ItemIsSelectable | Qt::ItemIsEnabled);
}
