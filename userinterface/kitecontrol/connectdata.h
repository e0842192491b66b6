#pragma once

#include <QString>

class ICfg;

/// One connection in the older record form that the user-interface applications read.
///
/// The connect dialog writes every entry in this form before it starts an application; the application finds the same
/// list under the same numbers. A record is the child node "ConnectData%1", %1 being its number, of the configuration
/// document "KiteResources/ConnectData", whose key "ConnectionCount" says how many records are valid. A plain value.
class ConnectData
{
public:
    ConnectData() = default;

    /// Reads record `index` of `pCfg`. A record that still has the oldest keys is brought to the current ones: their
    /// values become the defaults of the current keys, and the keys that the current form does not know are removed
    /// from the node. Nothing is saved by that. `pCfg` must be able to open the record's node.
    ConnectData(int index, ICfg* pCfg);

    /// Writes the current keys of record `m_nIndex` into `pCfg`, which must be able to open the record's node. Removes
    /// nothing, saves nothing.
    void Write(ICfg* pCfg) const;

    /// 4 for a device type of the "Kite Moss", "Kite Alpha", "Plover One" or "Plover Five" kind, else 0; "Kite Moss E"
    /// is of the "Kite Echo" kind, and 0.
    int GetTypeCategory() const;

    qint32 m_nIndex = 0;           ///< the record's number
    QString m_sStationName;        ///< the entry's name
    QString m_sDeviceType;         ///< the device type's display text, not its number
    qint32 m_nConnectionType = 0;  ///< 0 direct, 1 remote, 2 multichannel server
    QString m_sDeviceAddress;      ///< address of the device
    QString m_sRemoteAddress;      ///< address of the driver or server application
    qint32 m_nConnectionSpeed = 0; ///< link speed, 0 (LAN) to 6 (radio link)
    bool m_bTimeoutActive = false; ///< whether an inactivity time-out applies
    qint32 m_nTimeoutSeconds = 0;  ///< that time-out

    // In memory only; no key stands for them.
    qint32 m_nStatus = 0;                      ///< the entry's status: 0 free, 1 in use
    bool m_bSelected = false;                  ///< the entry's tick
    QString m_sSubsystem = QStringLiteral(""); ///< the entry's subsystem
    qint32 m_nReserved = 0;                    ///< carried along
};
