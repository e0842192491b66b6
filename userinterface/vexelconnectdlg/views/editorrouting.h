// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QList>

class QAbstractItemDelegate;
class QAbstractItemView;
class QModelIndex;
class QWidget;

/// Stores in `editor` the cell for which it was opened. Ignores null.
void RememberCell(QWidget* editor, const QModelIndex& index);

/// Lets views share one delegate: signals about an editor reach only the view that contains it.
///
/// Each view is connected to its delegate, so with a shared delegate all views get the signals of every editor. A view
/// that does not know the editor prints a warning and, at Tab (edit next cell), opens a second editor. If an edit
/// removes its row (through the filter), the view has already hidden and released the editor: its signals are ignored,
/// and the view takes over its focus. Call once, after the delegate is set on the views. `RememberCell` must be called
/// for every editor.
void RouteEditors(QAbstractItemDelegate* delegate, const QList<QAbstractItemView*>& views);
