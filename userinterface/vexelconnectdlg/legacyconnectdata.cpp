// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/legacyconnectdata.h"

#include "platform/cfgcenter.h"
#include "platform/documentwriter.h"
#include "platform/icfg.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"

#include <memory>
#include <vector>

ConnectData ConnectionToConnectData(const Connection& entry)
{
    ConnectData record;
    record.m_nIndex = -1;
    record.m_sStationName = entry.ConnectionName;
    record.m_sDeviceType = Connection::DeviceTypeName(entry.DeviceType);
    record.m_nConnectionType = entry.ConnectionType;
    record.m_sDeviceAddress = entry.DeviceAddress;
    record.m_sRemoteAddress = entry.DriverAddress;
    record.m_nConnectionSpeed = entry.LinkSpeed;
    record.m_bTimeoutActive = entry.TimeoutSeconds > 0;
    record.m_nTimeoutSeconds = entry.TimeoutSeconds;
    record.m_nStatus = entry.ConnectionStatus;
    record.m_bSelected = entry.Selected;
    record.m_sSubsystem = entry.Subsystem;
    return record;
}

Connection ConnectDataToConnection(const ConnectData& record)
{
    Connection entry;
    entry.ConnectionName = record.m_sStationName;
    // The first name contained in the text counts, because old records have texts such as "Kite Echo/Ember".
    for (int type = 0; type < Connection::kDeviceTypeCount; ++type) {
        if (record.m_sDeviceType.contains(Connection::DeviceTypeName(type), Qt::CaseInsensitive)) {
            entry.DeviceType = type;
            break;
        }
    }
    entry.ConnectionType = record.m_nConnectionType;
    entry.DeviceAddress = record.m_sDeviceAddress;
    entry.DriverAddress = record.m_sRemoteAddress;
    entry.LinkSpeed = record.m_nConnectionSpeed;
    entry.TimeoutSeconds = record.m_bTimeoutActive ? record.m_nTimeoutSeconds : 0;
    entry.ConnectionStatus = record.m_nStatus;
    entry.Selected = record.m_bSelected;
    entry.Subsystem = record.m_sSubsystem;
    return entry;
}

void ExportLegacyConnectData(const ConnectionsModel& model, IDocumentWriter* writer,
                             const std::function<bool()>& whileWaiting)
{
    const auto records = std::make_shared<std::vector<ConnectData>>();
    records->reserve(static_cast<std::size_t>(model.rowCount()));
    for (int row = 0; row < model.rowCount(); ++row) {
        records->push_back(ConnectionToConnectData(model.GetConnection(row)));
        records->back().m_nIndex = row;
    }
    const auto write = [records](ICfg& document) {
        for (const ConnectData& record : *records)
            record.Write(&document);
        document.SetString(QStringLiteral("ConnectionCount"), QString::number(records->size()), 0);
    };
    const QString name = QStringLiteral("KiteResources/ConnectData");
    if (writer) {
        writer->WriteDocument(name, View::Shared, write, whileWaiting);
    } else {
        write(*CfgCenter::CreateCfg(name, View::Shared, QString()));
        CfgCenter::SaveDocument();
    }
}
