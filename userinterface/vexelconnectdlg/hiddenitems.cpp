#include "userinterface/vexelconnectdlg/hiddenitems.h"

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
    // The list knows what is hidden, the closed box does not: only missing flags keep keys and wheel off an item.
    items->item(row)->setFlags(hidden ? Qt::ItemFlags(Qt::NoItemFlags) : Qt::ItemIsSelectable | Qt::ItemIsEnabled);
}
