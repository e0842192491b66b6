// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "userinterface/kitecontrol/connectdata.h"

#include <QString>

#include <vector>

/// Makes a list of legacy records, numbered in the order in which they are added.
class Records
{
public:
    Records& Add(const char* station, const char* deviceType, const char* remoteAddress = "")
    {
        ConnectData record;
        record.m_nIndex = qint32(m_records.size());
        record.m_sStationName = QString::fromUtf8(station);
        record.m_sDeviceType = QString::fromLatin1(deviceType);
        record.m_sRemoteAddress = QString::fromLatin1(remoteAddress);
        record.m_nConnectionType = record.m_sRemoteAddress.isEmpty() ? 0 : 1;
        m_records.push_back(record);
        return *this;
    }

    /// A copy, so that the list may be made and walked in one expression.
    std::vector<ConnectData> List() const { return m_records; }
    ConnectData& Last() { return m_records.back(); }

private:
    std::vector<ConnectData> m_records;
};
