// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/views/listkeys.h"

#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QTreeView>

#include <utility>

namespace {

/// Returns the first cell in the row of `current` that `view` shows and that has `flag`, from the header's position
/// `position` in the direction of `step`. Invalid if there is none.
QModelIndex FindCell(const QTreeView* view, int position, int step, Qt::ItemFlag flag)
{
    const QHeaderView* const header = view->header();
    for (; position >= 0 && position < header->count(); position += step) {
        const int column = header->logicalIndex(position);
        const QModelIndex cell = view->currentIndex().siblingAtColumn(column);
        if (!view->isColumnHidden(column) && cell.flags().testFlag(flag))
            return cell;
    }
    return {};
}

} // namespace

ListKeys::ListKeys(QList<QTreeView*> views, int tickColumn, QObject* parent)
    : QObject(parent)
    , m_views(std::move(views))
    , m_iTickColumn(tickColumn)
{
    for (QTreeView* view : m_views)
        view->installEventFilter(this);
}

bool ListKeys::eventFilter(QObject* watched, QEvent* event)
{
    auto* const view = qobject_cast<QTreeView*>(watched);
    // An editor passes the keys that it does not use on to its view, which then does not have the focus.
    if (event->type() != QEvent::KeyPress || !view || !view->hasFocus())
        return QObject::eventFilter(watched, event);
    const auto* const key = static_cast<QKeyEvent*>(event);
    // The arrow keys of a number pad have this modifier.
    if ((key->modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
        return QObject::eventFilter(watched, event);
    switch (key->key()) {
    case Qt::Key_Space:
        if (!key->isAutoRepeat())
            emit view->clicked(view->currentIndex().siblingAtColumn(m_iTickColumn));
        return true;
    case Qt::Key_F2:
        Edit(view);
        return true; // with or without an editor
    case Qt::Key_Left:
        MoveCurrent(view, -1);
        return true;
    case Qt::Key_Right:
        MoveCurrent(view, +1);
        return true;
    default:
        return QObject::eventFilter(watched, event);
    }
}

void ListKeys::Edit(QTreeView* view) const
{
    QModelIndex cell = view->currentIndex();
    if (cell.column() == m_iTickColumn || view->isColumnHidden(cell.column()))
        cell = FindCell(view, 0, +1, Qt::ItemIsEditable);
    if (!cell.flags().testFlag(Qt::ItemIsEditable))
        return;
    // Tab in the editor goes on from the current cell.
    view->selectionModel()->setCurrentIndex(cell, QItemSelectionModel::NoUpdate);
    view->scrollTo(cell);
    view->edit(cell);
}

void ListKeys::MoveCurrent(QTreeView* view, int step) const
{
    const int position = view->header()->visualIndex(view->currentIndex().column());
    QModelIndex cell = FindCell(view, position + step, step, Qt::ItemIsEnabled);
    const qsizetype next = m_views.indexOf(view) + step;
    if (!cell.isValid() && next >= 0 && next < m_views.size() && m_views.at(next)->isVisible()) {
        view = m_views.at(next);
        cell = FindCell(view, step > 0 ? 0 : view->header()->count() - 1, step, Qt::ItemIsEnabled);
    }
    if (!cell.isValid())
        return;
    view->setFocus();
    view->selectionModel()->setCurrentIndex(cell, QItemSelectionModel::NoUpdate);
}
