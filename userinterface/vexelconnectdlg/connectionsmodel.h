#pragma once

#include "userinterface/vexelconnectdlg/connection.h"

#include <QAbstractTableModel>
#include <QIcon>

#include <memory>
#include <vector>

/// The one list of connection entries, as a table of ten columns.
///
/// Views, the filter and the launcher read and change entries through it. The object name is the key under which the
/// set is stored in the product configuration: it is loaded at construction and stored at destruction. GUI thread only.
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

    /// Loads the set stored under `objectName`.
    ConnectionsModel(QObject* parent, const QString& objectName);
    /// Stores the set.
    ~ConnectionsModel() override;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    /// Always 10.
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    /// Emits `dataChanged` for `index` in every case; returns true only when a field was assigned.
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    QStringList mimeTypes() const override;
    /// A connection list document of the distinct rows of `indexes`, in order of first occurrence. The caller owns it.
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    /// Appends the entries of a connection list document. Entries read before an XML error stay; the error is traced.
    /// Returns true when at least one entry was read without an error.
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;
    /// Callers pass only ranges that exist.
    bool removeRows(int row, int count, const QModelIndex& parent = QModelIndex()) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    /// Appends a full copy of `connection`, status and selection included. Always true.
    bool AddConnection(const Connection& connection);
    /// A copy of the entry at `row`, which must exist.
    Connection GetConnection(int row) const;

    /// Removes the entries at `rows`, given in any order, in a time that grows with the length of the list and not with
    /// its square: rows in several places are first moved to the end, in one change of layout, and go from there in one
    /// step. The order of those that stay is kept. Rows outside the list are passed over.
    void RemoveEntries(const QList<int>& rows);

    /// Sets the status of every entry equal to `connection`. Always false, by design of the interface.
    bool SetConnectionStatus(const Connection& connection, int status);
    /// Makes every entry "Free".
    void ResetConnectionStatus();

    /// Entries that are selected and "Free"; not "Free"; selected. Constant time.
    int CountSelectedFree() const;
    int CountInUse() const;
    int CountSelected() const;

    /// The whole set as one connection list document.
    QByteArray ToByteArray() const;
    /// Replaces the set by the entries of a document, all "Free". Returns as `dropMimeData` does; entries read before
    /// an error stay.
    bool FromByteArray(const QByteArray& document);

    /// Loads the set from the configuration, or stores it there. False, with a trace, only without an object name.
    bool GetConfiguration();
    bool SetConfiguration();

private:
    /// What `CountSelectedFree`, `CountInUse` and `CountSelected` answer, kept up to date at every change: they are
    /// asked at every `dataChanged`, so counting then would make a reset of n rows cost n * n.
    struct Counts
    {
        int selectedFree = 0;
        int inUse = 0;
        int selected = 0;

        void Add(const Connection& connection, int sign);
    };

    static QVariant DisplayData(const Connection& entry, int column);
    static QVariant EditData(const Connection& entry, int column);
    static QVariant HeaderText(int section);
    static void Assign(Connection& entry, int column, const QVariant& value);

    /// The entry that `index` shows, or null where it lies outside the table or belongs to another model.
    const Connection* EntryAt(const QModelIndex& index) const;
    void SetStatus(int row, int status);
    /// Moves the marked entries behind the others; both keep their order.
    void MoveToEnd(const std::vector<bool>& marked);

    std::vector<std::unique_ptr<Connection>> m_connections;
    Counts m_counts;
    QIcon m_selectedIcon;
    QIcon m_timeoutIcon;
};
