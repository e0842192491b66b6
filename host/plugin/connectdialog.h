// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "host/plugin/entryapplication.h"
#include "userinterface/vexelconnectdlg/connection.h"

#include <QAbstractItemModel>
#include <QList>
#include <QString>
#include <QTreeView>
#include <QVariant>
#include <QWidget>

#include <array>
#include <optional>
#include <vector>

/// The columns of the entries model. The display role is the displayed text, the edit role the value.
enum class EntryColumn : int {
    Tick = 0,
    Name = 1,
    Status = 2,
    DeviceType = 3,
    ConnectionType = 4,
    DeviceAddress = 5,
    DriverAddress = 6,
    LinkSpeed = 7,
    Timeout = 8,
    Subsystem = 9,
};
constexpr int kEntryColumnCount = 10;

/// The value of each cell of an entry.
using EntryRow = std::array<QVariant, kEntryColumnCount>;
Connection ToConnection(const EntryRow& row);

/// A copy of the list that other threads can read.
struct ListCopy
{
    std::vector<EntryRow> rows;
    /// The entries from before an import as a connection list document, in place of `rows`, while the import
    /// replaces them, or has failed and its message box is open.
    QByteArray document;
};

/// Access to the plug-in's connect dialog through Qt's public object tree, by object names.
///
/// Rows are source model rows, independent of the views' filter and sort order. Owns nothing; invalid once the
/// plug-in's instance is destroyed. GUI thread only.
class ConnectDialog
{
public:
    static constexpr int kFree = 0;
    /// The dynamic property of the window that tells whether entries are being connected.
    static constexpr const char* kIsConnecting = "isConnecting";
    /// The object name of the "Problem" message box.
    static constexpr const char* kProblemBox = "m_problemBox";

    /// Finds the dialog among this application's top-level windows. If it or a part of it is missing, returns none and
    /// sets `error` to a sentence.
    static std::optional<ConnectDialog> Find(QString& error);

    QWidget* Window() const { return m_pWindow; }
    /// Returns the left (basic) and the right (details) view.
    const QList<QTreeView*>& Views() const { return m_views; }
    /// Returns the source model with the entries.
    QAbstractItemModel* Entries() const { return m_pEntries; }

    int Count() const;
    QString Name(int row) const;
    int Status(int row) const;
    bool IsTicked(int row) const;
    EntryRow Row(int row) const;

    /// Returns the application that serves the entry in `row`, also while the entry becomes "Free" because it has
    /// ended. None if there is no such application or the plug-in cannot tell.
    std::optional<EntryApplication> ApplicationOf(int row) const;

    /// Appends the entries of a connection list document, all as "Free". Returns false and leaves the list unchanged if
    /// the document is malformed or has no entries, or if the list would become too long (see `ConnectionList`).
    bool Append(const QByteArray& document) const;
    /// Returns the list for another thread: some 15 ms for 10,000 entries.
    ListCopy Copy() const;

    /// Connects the entries in `rows` that are "Free", whether they are ticked or not, as "&Connect" does. When this
    /// returns, the applications have been started. Handles events meanwhile. Returns false if it ended early because
    /// the program is told to end.
    bool ConnectEntries(const QList<int>& rows) const;
    /// Returns whether entries are being connected.
    bool IsConnecting() const { return m_pWindow->property(kIsConnecting).toBool(); }
    /// Stores the filter, without the list, if the plug-in can do that.
    void StoreFilter() const { QMetaObject::invokeMethod(m_pWindow, "StoreFilterSettings"); }

    /// Shows the dialog, also a minimised one, in front of other windows.
    void BringToFront() const;

private:
    ConnectDialog() = default;
    QVariant Value(int row, EntryColumn column) const;

    QWidget* m_pWindow = nullptr;
    QList<QTreeView*> m_views;
    QAbstractItemModel* m_pEntries = nullptr;
};
