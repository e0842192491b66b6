#pragma once

#include <QObject>

class QAbstractItemView;
class QWidget;

/// Hands drags that carry files from a view to the window around it.
///
/// A file manager offers a dragged file as plain text as well, and the view would take that text for entries; the
/// window is the one that knows what to do with files.
class FileDropForwarder : public QObject
{
    Q_OBJECT

public:
    /// @param window receives the drag events; also the parent.
    explicit FileDropForwarder(QWidget* window);

    void Watch(QAbstractItemView* view);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* const m_pWindow;
};
