// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/views/viewsizing.h"

#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/views/sizingdelegate.h"

#include <QEvent>
#include <QHeaderView>
#include <QScrollBar>
#include <QTimer>
#include <QTreeView>

#include <algorithm>
#include <utility>

namespace {

/// The shown column that is the last in the header.
int LastColumn(const QHeaderView* header)
{
    int visual = header->count() - 1;
    while (visual > 0 && header->isSectionHidden(header->logicalIndex(visual)))
        --visual;
    return header->logicalIndex(visual);
}

/// The height of all rows of a view; 0 if there are none.
int RowHeight(const QTreeView* view)
{
    return view->visualRect(view->model()->index(0, LastColumn(view->header()))).height();
}

/// Has the delegate measure the visible cells. The view's own function can miss the last visible row.
void MeasureVisibleRows(const QTreeView* view)
{
    const int height = RowHeight(view);
    if (height == 0)
        return;
    const int top = view->verticalScrollBar()->value();
    const int first = top / height;
    const int last = std::min((top + view->viewport()->height() - 1) / height, view->model()->rowCount() - 1);
    for (int column = 0; column < ConnectionsModel::kColumnCount; ++column) {
        if (view->isColumnHidden(column))
            continue;
        for (int row = first; row <= last; ++row)
            view->sizeHintForIndex(view->model()->index(row, column));
    }
}

void FitColumns(const QTreeView* view)
{
    QHeaderView* const header = view->header();
    // Called by name, because the slot is protected.
    QMetaObject::invokeMethod(header, "resizeSections");

    // The last column takes the rest of the width, even if that is too little for its contents.
    const int last = LastColumn(header);
    const int needed =
        std::max(header->sectionSizeHint(last), static_cast<const QAbstractItemView*>(view)->sizeHintForColumn(last));
    const bool stretch = header->sectionPosition(last) + needed <= header->viewport()->width();
    if (stretch != header->stretchLastSection()) {
        header->setStretchLastSection(stretch);
        QMetaObject::invokeMethod(header, "resizeSections");
    }
}

} // namespace

ViewSizing::ViewSizing(QList<QTreeView*> views, SizingDelegate* delegate)
    : QObject(delegate)
    , m_views(std::move(views))
    , m_delegate(delegate)
    , m_timer(new QTimer(this))
{
    m_timer->setSingleShot(true);
    m_timer->setInterval(0);
    connect(m_timer, &QTimer::timeout, this, &ViewSizing::Measure);

    const QAbstractItemModel* const model = m_views.first()->model();
    for (QTreeView* view : m_views) {
        // The header asks for the size of one row, because the delegate remembers those of the others.
        view->header()->setResizeContentsPrecision(1);
        disconnect(model, &QAbstractItemModel::dataChanged, view->header(), nullptr);
        connect(view->verticalScrollBar(), &QScrollBar::valueChanged, this, &ViewSizing::MeasureLater);
        connect(view->verticalScrollBar(), &QScrollBar::rangeChanged, this, &ViewSizing::MeasureLater);
        // Emitted also when the view is shown, and when its font or style changes.
        connect(view->header(), &QHeaderView::geometriesChanged, this, &ViewSizing::MeasureLater);
        view->installEventFilter(this);
    }

    const auto listChanged = [this, model] {
        m_listChanged = true;
        if (model->rowCount() == 0)
            m_delegate->ForgetRowHeight();
        MeasureLater();
    };
    connect(model, &QAbstractItemModel::rowsInserted, this, listChanged);
    connect(model, &QAbstractItemModel::rowsRemoved, this, listChanged);
    connect(model, &QAbstractItemModel::layoutChanged, this, listChanged);
    connect(model, &QAbstractItemModel::modelReset, this, listChanged);
    connect(model, &QAbstractItemModel::dataChanged, this,
            [listChanged](const QModelIndex& /*topLeft*/, const QModelIndex& bottomRight) {
                if (bottomRight.column() > ConnectionsModel::ColumnSelected)
                    listChanged();
            });
}

bool ViewSizing::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        m_delegate->ForgetRowHeight();
        m_delegate->ForgetWidths();
    }
    return QObject::eventFilter(watched, event);
}

void ViewSizing::MeasureLater()
{
    if (!m_timer->isActive())
        m_timer->start();
}

void ViewSizing::Measure()
{
    if (std::exchange(m_listChanged, false))
        m_delegate->ForgetWidths();
    for (const QTreeView* view : m_views) {
        if (view->isVisible()) {
            MeasureVisibleRows(view);
            FitColumns(view);
        }
    }
    AlignRows();
}

void ViewSizing::AlignRows()
{
    const int height = m_delegate->RowHeight();
    const auto hasOtherHeight = [height](const QTreeView* view) {
        return view->isVisible() && RowHeight(view) != height;
    };
    if (height == 0 || std::none_of(m_views.begin(), m_views.end(), hasOtherHeight))
        return;

    const QTreeView* const view = m_views.first();
    QScrollBar* const bar = view->verticalScrollBar();
    const int page = view->viewport()->height();
    const int oldHeight = RowHeight(view);
    const int oldValue = bar->value();
    const bool atEnd = oldValue == bar->maximum();
    const int current = view->currentIndex().row();
    const int currentMiddle = current * oldHeight + oldHeight / 2 - oldValue;
    const bool currentVisible = currentMiddle >= 0 && currentMiddle < page;

    for (QTreeView* other : m_views)
        other->doItemsLayout();

    // The same rows as before, with the last row or the current row still in view.
    int value = atEnd ? bar->maximum() : static_cast<int>(qint64{oldValue} * height / oldHeight);
    if (currentVisible)
        value = std::clamp(value, std::min((current + 1) * height - page, current * height), current * height);
    bar->setValue(value);
}
