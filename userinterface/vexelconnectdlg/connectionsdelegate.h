#pragma once

#include <QItemDelegate>

/// The in-place editors of the connections table: one kind per column of `ConnectionsModel`.
///
/// An editor is filled from the model's edit role and written back through `setData` with the edit role: a check box
/// for the tick, line edits for the free texts, combo boxes whose positions equal the values for the enumerations, and
/// a spin box in seconds for the timeout. Painting and size hints are the base class's. One delegate may serve several
/// views.
class ConnectionsDelegate : public QItemDelegate
{
    Q_OBJECT

public:
    explicit ConnectionsDelegate(QObject* parent);

    /// A new editor, already filled, as a child of `parent`; null for an invalid index and for a column without editor.
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    /// Writes what the editor holds. For a column without editor an invalid value is written, which the model refuses.
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
    /// At least the cell, at least the editor's size hint, about the centre of the cell.
    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;
};
