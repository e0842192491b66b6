// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>

class ICfg;

/// One connection in the older record form that the user-interface applications read.
///
/// The connect dialog writes all entries in this form before it starts an application, so the application finds the
/// same list under the same numbers. A record is the child node "ConnectData<number>" of the configuration document
/// "KiteResources/ConnectData"; the document's key "ConnectionCount" is the number of valid records. A value type.
class ConnectData
{
public:
    ConnectData() = default;

    /// Reads record `index` of `pCfg`, which must be able to open the record's node. Converts the oldest set of keys:
    /// their values become the defaults of the current keys, and keys that the current form does not have are removed
    /// from the node. Does not save the document.
    ConnectData(int index, ICfg* pCfg);

    /// Writes the current keys of record `m_nIndex` to `pCfg`, which must be able to open the record's node. Removes no
    /// keys and does not save the document.
    void Write(ICfg* pCfg) const;

    /// Returns 4 if the device type contains "Kite Moss", "Kite Alpha", "Plover One" or "Plover Five", otherwise 0.
    /// "Kite Moss E" counts as "Kite Echo" and gives 0.
    int GetTypeCategory() const;

    qint32 m_nIndex = 0;           ///< the record's number
    QString m_sStationName;        ///< the entry's name
    QString m_sDeviceType;         ///< display text of the device type, not its number
    qint32 m_nConnectionType = 0;  ///< 0 direct, 1 remote, 2 multichannel server
    QString m_sDeviceAddress;      ///< address of the device
    QString m_sRemoteAddress;      ///< address of the driver or server application
    qint32 m_nConnectionSpeed = 0; ///< link speed from 0 (LAN) to 6 (radio link)
    bool m_bTimeoutActive = false; ///< whether an inactivity time-out applies
    qint32 m_nTimeoutSeconds = 0;  ///< the inactivity time-out, in seconds

    // In memory only, never stored.
    qint32 m_nStatus = 0;                      ///< the entry's status: 0 free, 1 in use
    bool m_bSelected = false;                  ///< whether the entry is ticked
    QString m_sSubsystem = QStringLiteral(""); ///< the entry's subsystem
    qint32 m_nReserved = 0;                    ///< reserved
};
