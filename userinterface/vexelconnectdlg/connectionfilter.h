#pragma once

#include <QRegularExpression>
#include <QSortFilterProxyModel>
#include <QString>

/// How a filter pattern is understood; the values are the items of the search mode box and are what is stored.
enum class SearchMode : int { PlainText = 0, Wildcard = 1, RegularExpression = 2 };

/// The expression for a filter pattern, always without regard to case and unanchored.
///
/// Wildcard: "*" any run of characters, "?" one character, "[...]" a set, "[^...]" its complement; there is no escape
/// character. Regular expression: Perl syntax, with "." matching line breaks too and \w, \d and \s reaching beyond
/// ASCII. Any other number of `mode` counts as plain text. The result is invalid where the pattern is.
QRegularExpression FilterExpression(const QString& pattern, int mode);

/// The filter's three inputs, as they are kept between runs.
struct FilterSettings
{
    int column = 1; ///< model column; may lie outside the table
    QString pattern;
    int searchMode = 0; ///< of `SearchMode`

    /// From the user's configuration, corrected as far as that goes: a column one step outside the table is moved to
    /// its edge, an unknown search mode becomes plain text.
    static FilterSettings Load();
    void Save() const;
};

/// Sorts and filters the connections for the views.
///
/// As the plain proxy does, but for three things. An invalid expression matches nothing there too, yet with a warning
/// for every row. An expression that keeps the engine busy with one text (nested repetitions against a long name) is
/// given up there early, or ten thousand rows would hold the window for minutes; the row counts as no match. And texts
/// are shown on one line of bearable length: two views that show different columns of a row must give it the same
/// height, and a text of a megabyte would keep every layout busy. What is edited, filtered and sorted is the whole
/// text.
class ConnectionFilterModel : public QSortFilterProxyModel
{
public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;

private:
    void UpdateBounds() const;

    /// The filter's expression, and what is matched in its place; made anew when the filter's is another one.
    mutable QRegularExpression m_expression;
    mutable QRegularExpression m_forNames;
    mutable QRegularExpression m_forLongTexts;
};
