#include "host/headless/connectionreport.h"

#include "host/output/texttable.h"
#include "host/plugin/connectdialog.h"
#include "process/textline.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <array>
#include <vector>

namespace {

constexpr int kMaxColumnWidth = 60;
// Texts are cut to this length before escaping: a name may be a megabyte long.
constexpr qsizetype kMaxReadLength = 240;

/// The table's columns in order: what identifies an entry first, the tick last.
constexpr std::array kTableColumns = {
    EntryColumn::Name,          EntryColumn::Status,        EntryColumn::DeviceType, EntryColumn::ConnectionType,
    EntryColumn::DeviceAddress, EntryColumn::DriverAddress, EntryColumn::LinkSpeed,  EntryColumn::Timeout,
    EntryColumn::Subsystem,     EntryColumn::Tick};

/// The JSON names of a column's value and, for enumerated values, of its displayed text.
struct JsonField
{
    EntryColumn column;
    QLatin1String name;
    QLatin1String textName;
};

constexpr std::array kJsonFields = {
    JsonField{EntryColumn::Name, QLatin1String("name"), QLatin1String()},
    JsonField{EntryColumn::Tick, QLatin1String("selected"), QLatin1String()},
    JsonField{EntryColumn::Status, QLatin1String("status"), QLatin1String("statusText")},
    JsonField{EntryColumn::DeviceType, QLatin1String("deviceType"), QLatin1String("deviceTypeText")},
    JsonField{EntryColumn::ConnectionType, QLatin1String("connectionType"), QLatin1String("connectionTypeText")},
    JsonField{EntryColumn::DeviceAddress, QLatin1String("deviceAddress"), QLatin1String()},
    JsonField{EntryColumn::DriverAddress, QLatin1String("driverAddress"), QLatin1String()},
    JsonField{EntryColumn::LinkSpeed, QLatin1String("linkSpeed"), QLatin1String("linkSpeedText")},
    JsonField{EntryColumn::Timeout, QLatin1String("timeoutSeconds"), QLatin1String("timeoutText")},
    JsonField{EntryColumn::Subsystem, QLatin1String("subsystem"), QLatin1String()},
};

QModelIndex Cell(const QAbstractItemModel& entries, int row, EntryColumn column)
{
    return entries.index(row, static_cast<int>(column));
}

QString Heading(const QAbstractItemModel& entries, EntryColumn column)
{
    // The model's heading for the tick is only an icon.
    if (column == EntryColumn::Tick)
        return QStringLiteral("Selected");
    return OneLine(entries.headerData(static_cast<int>(column), Qt::Horizontal, Qt::DisplayRole).toString());
}

QString CellText(const QAbstractItemModel& entries, int row, EntryColumn column)
{
    const QModelIndex cell = Cell(entries, row, column);
    if (column == EntryColumn::Tick)
        return cell.data(Qt::EditRole).toBool() ? QStringLiteral("yes") : QStringLiteral("no");
    return Elided(OneLine(cell.data(Qt::DisplayRole).toString().left(kMaxReadLength)), kMaxColumnWidth);
}

} // namespace

QString ConnectionTable(const QAbstractItemModel& entries)
{
    std::vector<QStringList> lines;
    QStringList heading;
    for (const EntryColumn column : kTableColumns)
        heading.append(Heading(entries, column));
    lines.push_back(heading);
    for (int row = 0; row < entries.rowCount(); ++row) {
        QStringList line;
        for (const EntryColumn column : kTableColumns)
            line.append(CellText(entries, row, column));
        lines.push_back(line);
    }

    return TextTable(lines);
}

QByteArray ConnectionJson(const QAbstractItemModel& entries)
{
    QJsonArray connections;
    for (int row = 0; row < entries.rowCount(); ++row) {
        QJsonObject connection;
        for (const JsonField& field : kJsonFields) {
            const QModelIndex cell = Cell(entries, row, field.column);
            connection.insert(field.name, QJsonValue::fromVariant(cell.data(Qt::EditRole)));
            if (!field.textName.isEmpty())
                connection.insert(field.textName, cell.data(Qt::DisplayRole).toString());
        }
        connections.append(connection);
    }
    return QJsonDocument(QJsonObject{{QStringLiteral("connections"), connections}}).toJson();
}
