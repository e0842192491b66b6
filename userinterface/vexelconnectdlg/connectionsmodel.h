// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "userinterface/vexelconnectdlg/connection.h"
#include "userinterface/vexelconnectdlg/formats/connectionlist.h"

#include <QAbstractTableModel>
#include <QIcon>
#include <QSet>

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

/// The list of connection entries, as a table of ten columns.
///
/// Views, filter and launcher read and change the entries through this model. The constructor loads the entries from
/// the product configuration and the destructor stores them there, under the object name as key. GUI thread only.
///
/// Two dynamic properties tell the host how the last load went, so that it need not read the stored list itself:
/// "entriesLoaded" (int), and "isStoredListMalformed" (bool), true if only the entries before an error were loaded.
class ConnectionsModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column : int {
        ColumnSelected = 0,
        ColumnName = 1,
        ColumnStatus = 2,
        ColumnDeviceType = 3,
        ColumnConnectionType = 4,
        ColumnDeviceAddress = 5,
        ColumnDriverAddress = 6,
        ColumnLinkSpeed = 7,
        ColumnTimeout = 8,
        ColumnSubsystem = 9
    };
    static constexpr int kColumnCount = 10;

    /// Loads the entries stored under `objectName`.
    ConnectionsModel(QObject* parent, const QString& objectName);
    /// Stores the entries.
    ~ConnectionsModel() override;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    /// Always emits `dataChanged` for `index`; returns true only if a field was assigned.
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    QStringList mimeTypes() const override;
    /// Returns a connection list document with each row of `indexes` once, in order of first occurrence. The caller
    /// owns it.
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    /// Appends the entries of a connection list document. On an XML error, which is traced, keeps the entries read so
    /// far. A list that would become larger than the largest one (see `ConnectionList`) is such an error. Returns true
    /// if at least one entry was read and there was no error.
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;
    /// The range must exist.
    bool removeRows(int row, int count, const QModelIndex& parent = QModelIndex()) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    /// Appends a copy of `connection`, including status and selection. Always returns true: callers check `IsFull`.
    bool AddConnection(const Connection& connection);
    /// Returns whether the list has as many entries as a list may have.
    bool IsFull() const;
    /// Returns a copy of the entry at `row`, which must exist.
    Connection GetConnection(int row) const;
    /// Returns copies of all entries.
    std::vector<Connection> GetConnections() const;

    /// Returns for each of `entries` its place if they are sorted by the display text of `column`; equal texts have the
    /// same place. Empty for a column that is not sorted by its text. Any thread.
    static std::vector<int> SortRanks(const std::vector<Connection>& entries, int column);

    /// Removes the entries at `rows`, given in any order, in linear time: rows that are not adjacent are first moved to
    /// the end, in one layout change, and then removed together. The other entries keep their order. Rows outside the
    /// list are ignored.
    void RemoveEntries(const QList<int>& rows);

    /// Sets the status of every entry equal to `connection`. Always returns false, as the product's interface requires.
    bool SetConnectionStatus(const Connection& connection, int status);
    /// Sets every entry to "Free".
    void ResetConnectionStatus();
    /// Same for `count` entries from row `first` on, or as many as there are.
    void ResetConnectionStatus(int first, int count);

    /// Return the number of entries that are selected and "Free", not "Free", or selected. Constant time.
    int CountSelectedFree() const;
    int CountInUse() const;
    int CountSelected() const;

    /// Returns all entries as one connection list document.
    QByteArray ToByteArray() const;
    /// Replaces all entries by those of a document, with status "Free". Handles errors and returns like `dropMimeData`.
    bool FromByteArray(const QByteArray& document);
    /// Same, for a document that this model has written: no list is ever cut off, even if editing has made it larger
    /// than one that can be imported.
    bool RestoreByteArray(const QByteArray& document, ConnectionList::ReadError* error = nullptr);

    /// Load all entries from the configuration or store them there. Return false, with a trace, only if the object name
    /// is empty.
    bool GetConfiguration();
    bool SetConfiguration();

private:
    /// The results of the `Count` functions, updated at every change. They are read at every `dataChanged`, so counting
    /// there would make a reset of n rows cost n * n.
    struct Counts
    {
        int selectedFree = 0;
        QSet<const Connection*> inUse;
        int selected = 0;

        /// `connection` is the model's own entry, not a copy.
        void Add(const Connection& connection, int sign);
    };

    static QVariant DisplayData(const Connection& entry, int column);
    static QVariant EditData(const Connection& entry, int column);
    static QVariant HeaderText(int section);
    static void Assign(Connection& entry, int column, const QVariant& value);

    /// Returns the entry of `index`; null if the index is outside the table or belongs to another model.
    const Connection* EntryAt(const QModelIndex& index) const;
    void SetStatus(int row, int status);
    bool Append(const QByteArray& document, const ConnectionList::Room& room,
                ConnectionList::ReadError* error = nullptr);
    /// Moves the marked entries after the others; both keep their order.
    void MoveToEnd(const std::vector<bool>& marked);

    std::vector<std::unique_ptr<Connection>> m_connections;
    Counts m_counts;
    std::optional<std::size_t> m_storedHash; // of the text that the list has as it is stored; none: not known
    QIcon m_selectedIcon;
    QIcon m_timeoutIcon;
};
