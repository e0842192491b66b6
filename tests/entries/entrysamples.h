// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "userinterface/vexelconnectdlg/connection.h"

#include <QString>
#include <QStringList>

/// An entry of which no field has its default, and no field is that of the sample with the next number.
inline Connection SampleEntry(int number)
{
    Connection entry;
    entry.ConnectionName = QStringLiteral("entry %1").arg(number);
    entry.DeviceType = 5 + number % 5;
    entry.ConnectionType = 1 + number % 2;
    entry.DeviceAddress = QStringLiteral("10.0.0.%1").arg(number);
    entry.DriverAddress = QStringLiteral("10.0.1.%1").arg(number);
    entry.LinkSpeed = 1 + number % 6;
    entry.TimeoutSeconds = 30 + number;
    entry.ConnectionStatus = 1 + number % 2;
    entry.Selected = true;
    entry.Subsystem = QStringLiteral("subsystem %1").arg(number);
    return entry;
}

/// An entry with usual values, none of them the default.
inline Connection MastEntry()
{
    Connection entry;
    entry.ConnectionName = QStringLiteral("Mast 1");
    entry.DeviceType = Connection::KiteAlphaFinch;
    entry.ConnectionType = Connection::RemoteConnection;
    entry.DeviceAddress = QStringLiteral("10.0.0.5");
    entry.DriverAddress = QStringLiteral("pc7");
    entry.LinkSpeed = Connection::RadioLink;
    entry.TimeoutSeconds = 30;
    entry.ConnectionStatus = Connection::InUse;
    entry.Selected = true;
    entry.Subsystem = QStringLiteral("Corvus 2");
    return entry;
}

inline Connection NamedEntry(const QString& name)
{
    Connection entry;
    entry.ConnectionName = name;
    return entry;
}

/// All ten fields as text, status and selection too: comparing two of these says which field differs.
inline QStringList Fields(const Connection& entry)
{
    return {
        QStringLiteral("ConnectionName=") + entry.ConnectionName,
        QStringLiteral("DeviceType=%1").arg(entry.DeviceType),
        QStringLiteral("ConnectionType=%1").arg(entry.ConnectionType),
        QStringLiteral("DeviceAddress=") + entry.DeviceAddress,
        QStringLiteral("DriverAddress=") + entry.DriverAddress,
        QStringLiteral("LinkSpeed=%1").arg(entry.LinkSpeed),
        QStringLiteral("TimeoutSeconds=%1").arg(entry.TimeoutSeconds),
        QStringLiteral("ConnectionStatus=%1").arg(entry.ConnectionStatus),
        QStringLiteral("Selected=%1").arg(entry.Selected),
        QStringLiteral("Subsystem=") + entry.Subsystem,
    };
}

/// `Fields` of `entry` once it is "Free".
inline QStringList FreeFields(Connection entry)
{
    entry.ConnectionStatus = Connection::Free;
    return Fields(entry);
}
