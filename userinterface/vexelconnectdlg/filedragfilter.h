#pragma once

#include <QObject>

/// Makes a widget leave drags that carry files to the window around it.
///
/// A file manager offers a dragged file as plain text as well, and a view would take that text for entries, a field for
/// its own; the window is the one that knows what to do with files. What a widget declines, its parents are offered.
class FileDragFilter : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// @param receiver the widget that gets the drag events; for a view its viewport.
    void Watch(QObject* receiver);

    bool eventFilter(QObject* watched, QEvent* event) override;
};
