#pragma once

#include <QList>

class QAbstractItemDelegate;
class QAbstractItemView;
class QModelIndex;
class QWidget;

/// Remembers which cell `editor` was opened for; null is ignored.
void RememberCell(QWidget* editor, const QModelIndex& index);

/// Lets views share one delegate: what an editor reports reaches only the view that it stands in.
///
/// Every view listens to its delegate, so two views of one delegate both hear of each editor. The one that does not
/// know the editor complains, and at a Tab, which asks for the next cell, it opens an editor of its own. Where an edit
/// makes its own row vanish (under a filter), the editor is put away without a further word to the view, which has
/// forgotten it by then. Call once, when the views have the delegate; its editors must have been given to
/// `RememberCell`.
void RouteEditors(QAbstractItemDelegate* delegate, const QList<QAbstractItemView*>& views);
