// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QItemDelegate>

/// The in-place editors of the connections table, one kind per column of `ConnectionsModel`.
///
/// Editors read and write the model's edit role: a check box for the tick, line edits for free texts, combo boxes whose
/// item indexes are the values for enumerations, and a spin box in seconds for the timeout. The base class provides
/// painting and size hints. One delegate can serve several views.
class ConnectionsDelegate : public QItemDelegate
{
    Q_OBJECT

public:
    explicit ConnectionsDelegate(QObject* parent);

    /// Returns a new editor with the current value as a child of `parent`. Null for an invalid index or a column
    /// without an editor.
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    /// Writes the editor's value. For a column without an editor, writes an invalid value, which the model rejects.
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
    /// Centres the editor on the cell, with at least the size of the cell and of the editor's size hint.
    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;
};
