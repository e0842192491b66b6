#pragma once

#include <QObject>
#include <QPersistentModelIndex>

class QAbstractItemView;

/// Lets the second press of a double click on one column of a view count as a click like any other.
///
/// The view itself reports a double click as one click and one double click. On a column where a click toggles, two
/// quick clicks would then toggle once.
class SecondClick : public QObject
{
    Q_OBJECT

public:
    /// @param view receives the clicks; also the parent.
    SecondClick(QAbstractItemView* view, int column);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QAbstractItemView* const m_pView;
    const int m_iColumn;
    QPersistentModelIndex m_first;  // pressed first, as the view knows it
    QPersistentModelIndex m_second; // pressed again, which the view does not count
};
