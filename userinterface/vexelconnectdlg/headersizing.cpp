#include "userinterface/vexelconnectdlg/headersizing.h"

#include "userinterface/vexelconnectdlg/connectionsmodel.h"

#include <QHeaderView>
#include <QTimer>

namespace {

/// Rows to measure from the first visible one: two screens. More would take half the time of a key stroke in the
/// filter.
constexpr int kMeasuredRows = 50;

} // namespace

void CoalesceColumnResizing(QHeaderView* header, const QAbstractItemModel* model)
{
    header->setResizeContentsPrecision(kMeasuredRows);
    QObject::disconnect(model, &QAbstractItemModel::dataChanged, header, nullptr);

    auto* const timer = new QTimer(header);
    timer->setSingleShot(true);
    timer->setInterval(0);
    // Called by name, because the slot is protected.
    QObject::connect(
        timer, &QTimer::timeout, header, [header] { QMetaObject::invokeMethod(header, "resizeSections"); });
    QObject::connect(model, &QAbstractItemModel::dataChanged, timer,
                     [timer](const QModelIndex& /*topLeft*/, const QModelIndex& bottomRight) {
                         if (bottomRight.column() > ConnectionsModel::ColumnSelected && !timer->isActive()) {
                             timer->start();
                         }
                     });
}
