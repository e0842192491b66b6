// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/views/editorrouting.h"

#include <QAbstractItemDelegate>
#include <QAbstractItemView>
#include <QVariant>

namespace {

constexpr const char* kCellProperty = "vexelCell";

bool HasValidCell(const QWidget* editor)
{
    return editor->property(kCellProperty).toPersistentModelIndex().isValid();
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
        // Called by name, because the view's slots are protected.
        QObject::connect(delegate, &QAbstractItemDelegate::commitData, view, [view](QWidget* editor) {
            if (view->isAncestorOf(editor) && HasValidCell(editor))
                QMetaObject::invokeMethod(view, "commitData", Q_ARG(QWidget*, editor));
        });
        QObject::connect(delegate, &QAbstractItemDelegate::closeEditor, view,
                         [view](QWidget* editor, QAbstractItemDelegate::EndEditHint hint) {
                             if (!view->isAncestorOf(editor))
                                 return;
                             if (HasValidCell(editor))
                                 QMetaObject::invokeMethod(view, "closeEditor", Q_ARG(QWidget*, editor),
                                                           Q_ARG(QAbstractItemDelegate::EndEditHint, hint));
                             else if (editor->hasFocus())
                                 view->setFocus(); // the view has only hidden the editor of a row that is gone
                         });
    }
}
