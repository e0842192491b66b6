// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QCoreApplication>
#include <QRegularExpression>
#include <QSortFilterProxyModel>
#include <QString>

/// How a filter pattern is interpreted. The values are the item indexes of the search mode box and are stored.
enum class SearchMode : int { PlainText = 0, Wildcard = 1, RegularExpression = 2 };

/// Returns the expression for a filter pattern, case-insensitive and unanchored.
///
/// Wildcard: "*" any run of characters, "?" one character, "[...]" a set, "[^...]" its complement; there is no escape
/// character. Regular expression: Perl syntax; "." also matches line breaks, and \w, \d and \s use Unicode properties.
/// Any other `mode` is plain text. An invalid pattern gives an invalid expression.
QRegularExpression FilterExpression(const QString& pattern, int mode);

/// The filter's three inputs, as they are stored between runs.
struct FilterSettings
{
    int column = 1; ///< model column; may lie outside the table
    QString pattern;
    int searchMode = 0; ///< a `SearchMode` value

    /// Reads the user's configuration. A column one step outside the table is moved into it; an unknown search mode
    /// becomes plain text.
    static FilterSettings Load();
    void Save() const;
};

/// Sorts and filters the connections for the views.
///
/// Differs from QSortFilterProxyModel in four ways:
///
/// - An invalid expression matches nothing without a warning for every row.
/// - An expression that takes too long on a text (nested repetitions on a long name) is aborted, and the row does not
///   match. Otherwise ten thousand rows would block the window for minutes.
/// - Texts are displayed on one line of limited length, because two views with different columns of a row must give it
///   the same height, and a text of a megabyte would slow down every layout. Editing, filtering and sorting use the
///   whole text.
/// - The tick and its header, which have no text, have one for screen readers.
/// - Dropped entries are sorted in all at once. One by one, a hundred thousand would take many seconds.
/// - Icons have a plate behind them in selected rows (`PlatedIcon`).
class ConnectionFilterModel : public QSortFilterProxyModel
{
    Q_DECLARE_TR_FUNCTIONS(ConnectionFilterModel)

public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;

private:
    void UpdateBounds() const;

    /// The filter's expression and the two with match limits that are used instead; updated when the filter changes.
    mutable QRegularExpression m_expression;
    mutable QRegularExpression m_forNames;
    mutable QRegularExpression m_forLongTexts;
};
