#include "userinterface/vexelconnectdlg/rowremoval.h"

#include <QAbstractItemModel>

#include <algorithm>
#include <functional>
#include <vector>

void RemoveRows(QAbstractItemModel& model, const QModelIndexList& rows)
{
    std::vector<int> descending;
    descending.reserve(static_cast<std::size_t>(rows.size()));
    for (const QModelIndex& index : rows) {
        if (index.isValid())
            descending.push_back(index.row());
    }
    std::sort(descending.begin(), descending.end(), std::greater<>());
    descending.erase(std::unique(descending.begin(), descending.end()), descending.end());

    auto next = descending.cbegin();
    while (next != descending.cend()) {
        const int last = *next;
        int first = last;
        while (++next != descending.cend() && *next == first - 1)
            first = *next;
        model.removeRows(first, last - first + 1);
    }
}
