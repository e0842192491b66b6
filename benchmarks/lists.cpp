// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "benchmarks/lists.h"

#include "platform/cfgcenter.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/formats/connectionlist.h"

#include <algorithm>

namespace Lists {

std::vector<Connection> Entries(int count)
{
    std::vector<Connection> entries(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        Connection& entry = entries[static_cast<std::size_t>(i)];
        entry.ConnectionName = QStringLiteral("Station %1 %2").arg((i * 7919LL) % 100003).arg(i);
        entry.DeviceType = i % Connection::kDeviceTypeCount;
        entry.ConnectionType = i % Connection::kConnectionTypeCount;
        entry.DeviceAddress = QStringLiteral("192.0.2.%1").arg(i % 256);
        entry.DriverAddress = QStringLiteral("198.51.100.%1:27061").arg(i % 256);
        entry.LinkSpeed = i % Connection::kLinkSpeedCount;
        entry.TimeoutSeconds = i % 3 * 30;
        entry.Selected = i % 10 == 0;
    }
    return entries;
}

QByteArray Document(const std::vector<Connection>& entries)
{
    std::vector<const Connection*> pointers;
    pointers.reserve(entries.size());
    std::transform(entries.begin(), entries.end(), std::back_inserter(pointers),
                   [](const Connection& entry) { return &entry; });
    return ConnectionList::Write(pointers);
}

void Fill(ConnectionsModel& model, const std::vector<Connection>& entries)
{
    for (const Connection& entry : entries)
        model.AddConnection(entry);
}

void Store(const std::vector<Connection>& entries, const QString& store)
{
    CfgCenter::Open(store);
    {
        ConnectionsModel model(nullptr, QStringLiteral("ConnectionsModel"));
        Fill(model, entries);
    }
    CfgCenter::SaveDocument();
    CfgCenter::Close();
}

qint64 TextBytes(const std::vector<Connection>& entries)
{
    qint64 units = 0;
    for (const Connection& entry : entries) {
        units += entry.ConnectionName.size() + entry.DeviceAddress.size() + entry.DriverAddress.size() +
                 entry.Subsystem.size();
    }
    return 2 * units;
}

} // namespace Lists
