// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/connectionsmodel.h"

#include "platform/cfgcenter.h"
#include "platform/icfg.h"
#include "platform/tracing.h"
#include "process/freememory.h"
#include "userinterface/vexelconnectdlg/views/columnhelp.h"

#include <QIcon>
#include <QMimeData>
#include <QPainter>
#include <QPixmapCache>

#include <algorithm>
#include <numeric>

// Resources of a static library must be initialised explicitly; the macro must not be used inside a namespace.
static void InitImages()
{
    Q_INIT_RESOURCE(vexelconnectdlg);
}

namespace {

constexpr const char* kTraceSource = "userinterface/vexelconnectdlg/connectionsmodel";
constexpr quint16 kNoNameToReadLine = 673;
constexpr quint16 kNoNameToWriteLine = 694;

const QString kStoredSetKey = QStringLiteral("ModelMimeData");

std::unique_ptr<ICfg> OpenStoredSet(const QString& objectName)
{
    return std::unique_ptr<ICfg>(CfgCenter::GetAppCfg(View::Application)->OpenChild(objectName, 0));
}

/// Returns the bytes of hexadecimal text; characters that are not digits are skipped.
QByteArray FromHex(const QString& hex)
{
    const auto valueOf = [](QChar digit) {
        const char16_t unit = digit.unicode();
        if (unit >= u'0' && unit <= u'9')
            return unit - u'0';
        return unit >= u'a' && unit <= u'f' ? unit - u'a' + 10 : -1;
    };
    // As it is written: without a copy of the text and in a third of the time.
    QByteArray bytes(hex.size() / 2, Qt::Uninitialized);
    int all = hex.size() % 2 == 0 ? 0 : -1; // negative: not as it is written
    char* const data = bytes.data();
    for (qsizetype i = 0; i < bytes.size() && all >= 0; ++i) {
        all = valueOf(hex[2 * i]) * 16 | valueOf(hex[2 * i + 1]);
        data[i] = static_cast<char>(all);
    }
    return all >= 0 ? bytes : QByteArray::fromHex(hex.toLatin1());
}

/// Returns the stored document; its text, four times as long, is gone when this returns.
QByteArray ReadStoredDocument(const QString& objectName, bool& isStored)
{
    const QString hex = OpenStoredSet(objectName)->GetString(kStoredSetKey, QStringLiteral(""), 0);
    isStored = !hex.isEmpty();
    return FromHex(hex);
}

/// Returns the square of an entry that is not selected: black outline on white. Cached, because every painted row uses
/// it.
QPixmap UncheckedBox()
{
    const QString key = QStringLiteral("ConnectionsModel/emptyBox");
    QPixmap box;
    if (!QPixmapCache::find(key, &box)) {
        box = QPixmap(12, 12);
        box.fill(Qt::white);
        QPainter painter(&box);
        painter.setPen(QPen());
        painter.drawRect(box.rect().adjusted(0, 0, -1, -1));
        painter.end();
        QPixmapCache::insert(key, box);
    }
    return box;
}

} // namespace

void ConnectionsModel::Counts::Add(const Connection& connection, int sign)
{
    const bool free = connection.ConnectionStatus == Connection::Free;
    if (connection.Selected)
        selected += sign;
    if (connection.Selected && free)
        selectedFree += sign;
    if (!free && sign > 0)
        inUse.insert(&connection);
    else if (!free)
        inUse.remove(&connection);
}

ConnectionsModel::ConnectionsModel(QObject* parent, const QString& objectName)
    : QAbstractTableModel(parent)
{
    InitImages();
    m_selectedIcon = QIcon(QStringLiteral(":/ok.png"));
    m_timeoutIcon = QIcon(QStringLiteral(":/time.png"));
    setObjectName(objectName);
    const auto forget = [this] {
        m_storedHash.reset();
    };
    connect(this, &QAbstractItemModel::dataChanged, this, forget);
    connect(this, &QAbstractItemModel::rowsInserted, this, forget);
    connect(this, &QAbstractItemModel::rowsRemoved, this, forget);
    connect(this, &QAbstractItemModel::layoutChanged, this, forget);
    connect(this, &QAbstractItemModel::modelReset, this, forget);
    connect(this, &QObject::objectNameChanged, this, forget);
    GetConfiguration();
}

ConnectionsModel::~ConnectionsModel()
{
    SetConfiguration();
}

int ConnectionsModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_connections.size());
}

int ConnectionsModel::columnCount(const QModelIndex& /*parent*/) const
{
    return kColumnCount;
}

const Connection* ConnectionsModel::EntryAt(const QModelIndex& index) const
{
    const bool inTable =
        index.isValid() && index.model() == this && index.row() < rowCount() && index.column() < kColumnCount;
    return inTable ? m_connections[static_cast<std::size_t>(index.row())].get() : nullptr;
}

QVariant ConnectionsModel::data(const QModelIndex& index, int role) const
{
    const Connection* const entry = EntryAt(index);
    if (!entry)
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return DisplayData(*entry, index.column());
    case Qt::EditRole:
        return EditData(*entry, index.column());
    case Qt::DecorationRole:
        if (index.column() != ColumnSelected)
            return {};
        return entry->Selected ? QVariant(m_selectedIcon) : QVariant(UncheckedBox());
    case Qt::ToolTipRole:
    case Qt::StatusTipRole:
        return headerData(index.column(), Qt::Horizontal, role);
    default:
        return {};
    }
}

QVariant ConnectionsModel::DisplayData(const Connection& entry, int column)
{
    switch (column) {
    case ColumnSelected:
        return entry.Selected ? QStringLiteral(" ") : QStringLiteral("");
    case ColumnStatus:
        return Connection::StatusName(entry.ConnectionStatus);
    case ColumnDeviceType:
        return Connection::DeviceTypeName(entry.DeviceType);
    case ColumnConnectionType:
        return Connection::ConnectionTypeName(entry.ConnectionType);
    case ColumnLinkSpeed:
        return Connection::LinkSpeedName(entry.LinkSpeed);
    case ColumnTimeout:
        return entry.TimeoutSeconds > 0 ? QVariant(entry.TimeoutSeconds) : QVariant(tr("No Timeout"));
    default:
        return EditData(entry, column);
    }
}

QVariant ConnectionsModel::EditData(const Connection& entry, int column)
{
    switch (column) {
    case ColumnSelected:
        return entry.Selected;
    case ColumnName:
        return entry.ConnectionName;
    case ColumnStatus:
        return entry.ConnectionStatus;
    case ColumnDeviceType:
        return entry.DeviceType;
    case ColumnConnectionType:
        return entry.ConnectionType;
    case ColumnDeviceAddress:
        return entry.DeviceAddress;
    case ColumnDriverAddress:
        return entry.DriverAddress;
    case ColumnLinkSpeed:
        return entry.LinkSpeed;
    case ColumnTimeout:
        return entry.TimeoutSeconds;
    case ColumnSubsystem:
        return entry.Subsystem;
    default:
        return {};
    }
}

bool ConnectionsModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    const bool assignable = role == Qt::EditRole && EntryAt(index) != nullptr;
    if (assignable) {
        Connection& entry = *m_connections[static_cast<std::size_t>(index.row())];
        m_counts.Add(entry, -1);
        Assign(entry, index.column(), value);
        m_counts.Add(entry, +1);
    }
    emit dataChanged(index, index);
    return assignable;
}

void ConnectionsModel::Assign(Connection& entry, int column, const QVariant& value)
{
    switch (column) {
    case ColumnSelected:
        entry.Selected = value.toBool();
        break;
    case ColumnName:
        entry.ConnectionName = value.toString();
        break;
    case ColumnStatus:
        entry.ConnectionStatus = value.toInt();
        break;
    case ColumnDeviceType:
        entry.DeviceType = value.toInt();
        break;
    case ColumnConnectionType:
        entry.ConnectionType = value.toInt();
        break;
    case ColumnDeviceAddress:
        entry.DeviceAddress = value.toString();
        break;
    case ColumnDriverAddress:
        entry.DriverAddress = value.toString();
        break;
    case ColumnLinkSpeed:
        entry.LinkSpeed = value.toInt();
        break;
    case ColumnTimeout:
        entry.TimeoutSeconds = value.toInt();
        break;
    case ColumnSubsystem:
        entry.Subsystem = value.toString();
        break;
    default:
        break;
    }
}

QVariant ConnectionsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Vertical)
        return role == Qt::DisplayRole ? QVariant(section) : QVariant();
    switch (role) {
    case Qt::DisplayRole:
        return HeaderText(section);
    case Qt::DecorationRole:
        if (section == ColumnSelected)
            return m_selectedIcon;
        if (section == ColumnTimeout)
            return m_timeoutIcon;
        return {};
    case Qt::ToolTipRole:
    case Qt::StatusTipRole:
        return ConnectionsColumnHelp(section);
    default:
        return {};
    }
}

QVariant ConnectionsModel::HeaderText(int section)
{
    switch (section) {
    case ColumnSelected:
        return QStringLiteral("");
    case ColumnName:
        return tr("Name");
    case ColumnStatus:
        return tr("Status");
    case ColumnDeviceType:
        return tr("Device Type");
    case ColumnConnectionType:
        return tr("Connection Type");
    case ColumnDeviceAddress:
        return tr("Device Address");
    case ColumnDriverAddress:
        return tr("Driver Address");
    case ColumnLinkSpeed:
        return tr("Link Speed");
    case ColumnTimeout:
        return tr("Timeout Time");
    case ColumnSubsystem:
        return tr("Subsystem");
    default:
        return {};
    }
}

QStringList ConnectionsModel::mimeTypes() const
{
    return {ConnectionList::MimeType()};
}

QMimeData* ConnectionsModel::mimeData(const QModelIndexList& indexes) const
{
    std::vector<const Connection*> entries;
    std::vector<bool> taken(m_connections.size(), false);
    for (const QModelIndex& index : indexes) {
        const Connection* const entry = EntryAt(index);
        if (!entry || taken[static_cast<std::size_t>(index.row())])
            continue;
        taken[static_cast<std::size_t>(index.row())] = true;
        entries.push_back(entry);
    }
    auto* const data = new QMimeData;
    data->setData(ConnectionList::MimeType(), ConnectionList::Write(entries));
    return data;
}

bool ConnectionsModel::dropMimeData(const QMimeData* data, Qt::DropAction /*action*/, int /*row*/, int /*column*/,
                                    const QModelIndex& /*parent*/)
{
    if (!data)
        return false;
    ConnectionList::Room room;
    room.entries -= rowCount();
    for (const std::unique_ptr<Connection>& entry : m_connections)
        room.bytes -= ConnectionList::WrittenSize(*entry);
    return Append(data->data(ConnectionList::MimeType()), room);
}

bool ConnectionsModel::Append(const QByteArray& document, const ConnectionList::Room& room,
                              ConnectionList::ReadError* error)
{
    return ConnectionList::Read(
        document, [this](const Connection& entry) { AddConnection(entry); }, room, error);
}

bool ConnectionsModel::removeRows(int row, int count, const QModelIndex& parent)
{
    if (row < 0 || row >= rowCount(parent))
        return false;
    if (count < 1)
        return true;
    // A range beyond the end must not corrupt the list.
    const int last = row + std::min(count, rowCount() - row) - 1;
    beginRemoveRows(QModelIndex(), row, last);
    const auto begin = m_connections.begin() + row;
    const auto end = m_connections.begin() + last + 1;
    std::for_each(begin, end, [this](const auto& entry) { m_counts.Add(*entry, -1); });
    m_connections.erase(begin, end);
    endRemoveRows();
    return true;
}

void ConnectionsModel::RemoveEntries(const QList<int>& rows)
{
    std::vector<bool> toRemove(m_connections.size(), false);
    int count = 0;
    int first = rowCount();
    int last = -1;
    for (const int row : rows) {
        if (row < 0 || row >= rowCount() || toRemove[static_cast<std::size_t>(row)])
            continue;
        toRemove[static_cast<std::size_t>(row)] = true;
        ++count;
        first = std::min(first, row);
        last = std::max(last, row);
    }
    if (count == 0)
        return;
    if (last - first + 1 != count) {
        MoveToEnd(toRemove);
        first = rowCount() - count;
    }
    removeRows(first, count);
}

void ConnectionsModel::MoveToEnd(const std::vector<bool>& marked)
{
    emit layoutAboutToBeChanged({}, VerticalSortHint);
    std::vector<std::unique_ptr<Connection>> reordered;
    reordered.reserve(m_connections.size());
    std::vector<int> newRows(m_connections.size());
    for (const bool behind : {false, true}) {
        for (std::size_t row = 0; row < m_connections.size(); ++row) {
            if (marked[row] == behind) {
                newRows[row] = static_cast<int>(reordered.size());
                reordered.push_back(std::move(m_connections[row]));
            }
        }
    }
    m_connections = std::move(reordered);
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex& moved : before)
        after.append(index(newRows[static_cast<std::size_t>(moved.row())], moved.column()));
    changePersistentIndexList(before, after);
    emit layoutChanged({}, VerticalSortHint);
}

Qt::ItemFlags ConnectionsModel::flags(const QModelIndex& index) const
{
    const Qt::ItemFlags base = QAbstractTableModel::flags(index);
    const Qt::ItemFlags disabled = base & ~(Qt::ItemIsEditable | Qt::ItemIsEnabled);
    const Connection* const entry = EntryAt(index);
    if (!entry)
        return disabled;
    const Qt::ItemFlags enabled =
        base | Qt::ItemIsEditable | Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled | Qt::ItemIsEnabled;
    // Does not read the entry's status: views ask this for every row, and most entries are not in the cache.
    Qt::ItemFlags result = m_counts.inUse.contains(entry) ? disabled : enabled;
    switch (index.column()) {
    case ColumnSelected:
    case ColumnStatus:
        // The dialog toggles the tick, the launcher sets the status.
        result &= ~Qt::ItemIsEditable;
        break;
    case ColumnDeviceAddress:
        if (entry->ConnectionType == Connection::MultiChannelServer)
            result = disabled;
        break;
    case ColumnDriverAddress:
        if (entry->ConnectionType == Connection::DirectConnection)
            result = disabled;
        break;
    default:
        break;
    }
    return result;
}

bool ConnectionsModel::AddConnection(const Connection& connection)
{
    const int row = rowCount();
    beginInsertRows(QModelIndex(), row, row);
    m_connections.push_back(std::make_unique<Connection>(connection));
    m_counts.Add(*m_connections.back(), +1);
    endInsertRows();
    return true;
}

bool ConnectionsModel::IsFull() const
{
    return rowCount() >= ConnectionList::kMaximumEntries;
}

Connection ConnectionsModel::GetConnection(int row) const
{
    return *m_connections[static_cast<std::size_t>(row)];
}

std::vector<Connection> ConnectionsModel::GetConnections() const
{
    std::vector<Connection> connections;
    connections.reserve(m_connections.size());
    for (const std::unique_ptr<Connection>& connection : m_connections)
        connections.push_back(*connection);
    return connections;
}

std::vector<int> ConnectionsModel::SortRanks(const std::vector<Connection>& entries, int column)
{
    // Numbers and a text; a column out of the table has neither.
    if (column < 0 || column >= kColumnCount || column == ColumnTimeout)
        return {};
    std::vector<QString> texts(entries.size());
    std::transform(entries.begin(), entries.end(), texts.begin(),
                   [column](const Connection& entry) { return DisplayData(entry, column).toString(); });
    std::vector<std::size_t> order(entries.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(),
              [&texts](std::size_t left, std::size_t right) { return texts[left] < texts[right]; });
    std::vector<int> ranks(entries.size());
    int rank = 0;
    for (std::size_t i = 1; i < order.size(); ++i) {
        if (texts[order[i - 1]] != texts[order[i]])
            ++rank;
        ranks[order[i]] = rank;
    }
    return ranks;
}

void ConnectionsModel::SetStatus(int row, int status)
{
    Connection& entry = *m_connections[static_cast<std::size_t>(row)];
    m_counts.Add(entry, -1);
    entry.ConnectionStatus = status;
    m_counts.Add(entry, +1);
    const QModelIndex cell = index(row, ColumnStatus);
    emit dataChanged(cell, cell);
}

bool ConnectionsModel::SetConnectionStatus(const Connection& connection, int status)
{
    for (int row = 0; row < rowCount(); ++row)
        if (*m_connections[static_cast<std::size_t>(row)] == connection)
            SetStatus(row, status);
    return false;
}

void ConnectionsModel::ResetConnectionStatus()
{
    ResetConnectionStatus(0, rowCount());
}

void ConnectionsModel::ResetConnectionStatus(int first, int count)
{
    for (int row = first; row < first + count && row < rowCount(); ++row)
        SetStatus(row, Connection::Free);
}

int ConnectionsModel::CountSelectedFree() const
{
    return m_counts.selectedFree;
}

int ConnectionsModel::CountInUse() const
{
    return static_cast<int>(m_counts.inUse.size());
}

int ConnectionsModel::CountSelected() const
{
    return m_counts.selected;
}

QByteArray ConnectionsModel::ToByteArray() const
{
    QModelIndexList rows;
    rows.reserve(rowCount());
    for (int row = 0; row < rowCount(); ++row)
        rows.append(index(row, ColumnSelected));
    const std::unique_ptr<QMimeData> data(mimeData(rows));
    return data->data(ConnectionList::MimeType());
}

bool ConnectionsModel::FromByteArray(const QByteArray& document)
{
    removeRows(0, rowCount());
    QMimeData data;
    data.setData(ConnectionList::MimeType(), document);
    const bool read = dropMimeData(&data, Qt::CopyAction, 0, 0, QModelIndex());
    ResetConnectionStatus();
    return read;
}

bool ConnectionsModel::RestoreByteArray(const QByteArray& document, ConnectionList::ReadError* error)
{
    removeRows(0, rowCount());
    const bool read = Append(document, ConnectionList::kRoomForOwnList, error);
    ResetConnectionStatus();
    return read;
}

bool ConnectionsModel::GetConfiguration()
{
    if (objectName().isEmpty()) {
        Trace(kTraceSource, kNoNameToReadLine, [] {
            return QStringLiteral(
                "ConnectionsModel::GetConfiguration(): Could not read config because of empty object name.");
        });
        return false;
    }
    bool isStored = false;
    ConnectionList::ReadError error;
    RestoreByteArray(ReadStoredDocument(objectName(), isStored), &error);
    setProperty("entriesLoaded", rowCount());
    setProperty("isStoredListMalformed", isStored && error.row > 0);
    ReturnFreeMemory();
    return true;
}

bool ConnectionsModel::SetConfiguration()
{
    if (objectName().isEmpty()) {
        Trace(kTraceSource, kNoNameToWriteLine, [] {
            return QStringLiteral(
                "ConnectionsModel::SetConfiguration(): Could not write config because of empty object name.");
        });
        return false;
    }
    const auto storedSet = OpenStoredSet(objectName());
    // To serialise a long list takes a tenth of a second or more.
    if (m_storedHash && qHash(storedSet->GetString(kStoredSetKey, QString(), 0)) == *m_storedHash)
        return true;
    const QString text = QString::fromLatin1(ToByteArray().toHex());
    storedSet->SetString(kStoredSetKey, text, 0);
    m_storedHash = qHash(text);
    return true;
}
