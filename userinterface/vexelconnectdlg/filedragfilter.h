#pragma once

#include <QObject>

class QAbstractItemView;

/// Makes a view leave drags that carry files to the window around it.
///
/// A file manager offers a dragged file as plain text as well, and the view would take that text for entries; the
/// window is the one that knows what to do with files. What a view declines, its parents are offered.
class FileDragFilter : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    void Watch(QAbstractItemView* view);

    bool eventFilter(QObject* watched, QEvent* event) override;
};
