// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QObject>
#include <QString>

/// One connection entry: a piece of direction-finding or receiving hardware to which an operator can connect.
///
/// A value type. It is a QObject only for its class name and translation context: entries have no parent, and copying
/// does not copy the QObject part (parent, object name). The enumeration fields are plain integers, because files may
/// contain any value; values outside the enumerations are kept.
class Connection : public QObject
{
    Q_OBJECT

public:
    /// The numbers are used by the table columns and the stored documents.
    enum DeviceTypes : qint32 {
        KiteAlphaWrenC = 0,
        KiteBravo = 1,
        KiteCobra = 2,
        KiteDelta = 3,
        KiteEcho = 4,
        KiteEmber = 5,
        KiteMoss = 6,
        PloverOne = 7,
        PloverFive = 8,
        Heron = 9,
        WrenD = 10,
        Pipit = 11,
        KiteAlphaFinch = 12,
        KiteFjord = 13,
        LinnetDF = 14
    };
    enum ConnectionTypes : qint32 { DirectConnection = 0, RemoteConnection = 1, MultiChannelServer = 2 };
    enum LinkSpeeds : qint32 { Lan = 0, Isdn = 1, FastModem = 2, SlowModem = 3, Gsm = 4, Umts = 5, RadioLink = 6 };
    enum ConnectionStates : qint32 { Free = 0, InUse = 1 };

    /// Number of values in each enumeration; they are numbered from 0 without gaps.
    static constexpr int kDeviceTypeCount = 15;
    static constexpr int kConnectionTypeCount = 3;
    static constexpr int kLinkSpeedCount = 7;
    static constexpr int kConnectionStatusCount = 2;

    Connection();
    Connection(const Connection& other);
    Connection& operator=(const Connection& other);
    ~Connection() override = default;

    /// Compares all fields except status and selection.
    bool operator==(const Connection& other) const;
    bool operator!=(const Connection& other) const { return !(*this == other); }

    /// Return display texts; for a value outside the enumeration "No string representation for ID %1" with the number.
    static QString StatusName(int value);
    static QString ConnectionTypeName(int value);
    static QString DeviceTypeName(int value);
    static QString LinkSpeedName(int value);

    /// Return the same in English, whatever the user's language.
    static QString EnglishStatusName(int value);
    static QString EnglishConnectionTypeName(int value);
    static QString EnglishDeviceTypeName(int value);
    static QString EnglishLinkSpeedName(int value);

    /// Returns the device type whose user-interface application serves entries of type `deviceType`.
    static int ApplicationDeviceType(int deviceType);

    QString ConnectionName;         ///< free text for the operator
    qint32 DeviceType = KiteEcho;   ///< a `DeviceTypes` value
    qint32 ConnectionType = 0;      ///< a `ConnectionTypes` value
    QString DeviceAddress;          ///< IP address of the hardware
    QString DriverAddress;          ///< IP address of the computer that runs the driver application
    qint32 LinkSpeed = Lan;         ///< a `LinkSpeeds` value
    qint32 TimeoutSeconds = 0;      ///< operator inactivity time-out in seconds; 0 for none
    qint32 ConnectionStatus = Free; ///< a `ConnectionStates` value
    bool Selected = false;          ///< ticked for the next connect
    QString Subsystem;              ///< "Corvus" subsystem that a "Tally" toolbar belongs to
};
