#include "userinterface/vexelconnectdlg/editorrouting.h"

#include <QAbstractItemDelegate>
#include <QAbstractItemView>
#include <QVariant>

namespace {

constexpr const char* kCellProperty = "vexelCell";

bool IsCellThere(const QWidget* editor)
{
    return editor->property(kCellProperty).toPersistentModelIndex().isValid();
}

void PutAway(QWidget* editor, QAbstractItemDelegate* delegate, QAbstractItemView* view)
{
    // Losing the focus must not count as leaving the cell once more.
    editor->removeEventFilter(delegate);
    if (editor->hasFocus() || (editor->focusProxy() && editor->focusProxy()->hasFocus()))
        view->setFocus();
    editor->hide();
}

} // namespace

void RememberCell(QWidget* editor, const QModelIndex& index)
{
    if (editor)
        editor->setProperty(kCellProperty, QVariant::fromValue(QPersistentModelIndex(index)));
}

void RouteEditors(QAbstractItemDelegate* delegate, const QList<QAbstractItemView*>& views)
{
    for (QAbstractItemView* view : views) {
        QObject::disconnect(delegate, &QAbstractItemDelegate::commitData, view, nullptr);
        QObject::disconnect(delegate, &QAbstractItemDelegate::closeEditor, view, nullptr);
        // The view's operations are for subclasses and signals only, hence by name.
        QObject::connect(
            delegate, &QAbstractItemDelegate::commitData, view,
            [view](QWidget* editor) {
                if (view->isAncestorOf(editor) && IsCellThere(editor))
                    QMetaObject::invokeMethod(view, "commitData", Q_ARG(QWidget*, editor));
            });
        QObject::connect(delegate, &QAbstractItemDelegate::closeEditor, view,
                         [view, delegate](QWidget* editor, QAbstractItemDelegate::EndEditHint hint) {
                             if (!view->isAncestorOf(editor)) {
                                 return;
                             }
                             if (!IsCellThere(editor)) {
                                 PutAway(editor, delegate, view);
                                 return;
                             }
                             QMetaObject::invokeMethod(view, "closeEditor", Q_ARG(QWidget*, editor),
                                                       Q_ARG(QAbstractItemDelegate::EndEditHint, hint));
                         });
    }
}
