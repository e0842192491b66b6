#include "userinterface/vexelconnectdlg/headersizing.h"

#include "userinterface/vexelconnectdlg/connectionsmodel.h"

#include <QHeaderView>
#include <QTimer>

namespace {

/// Rows that are measured, from the first visible one on: two screens full. More would be half of what a key stroke in
/// the filter takes.
constexpr int kMeasuredRows = 50;

} // namespace

void SizeOncePerBurst(QHeaderView* header, const QAbstractItemModel* model)
{
    header->setResizeContentsPrecision(kMeasuredRows);
    QObject::disconnect(model, &QAbstractItemModel::dataChanged, header, nullptr);

    auto* const timer = new QTimer(header);
    timer->setSingleShot(true);
    timer->setInterval(0);
    // By name, because the operation is for the toolkit's own signals.
    QObject::connect(
        timer, &QTimer::timeout, header, [header] { QMetaObject::invokeMethod(header, "resizeSections"); });
    QObject::connect(model, &QAbstractItemModel::dataChanged, timer,
                     [timer](const QModelIndex& /*topLeft*/, const QModelIndex& bottomRight) {
                         if (bottomRight.column() > ConnectionsModel::ColumnSelected && !timer->isActive()) {
                             timer->start();
                         }
                     });
}
