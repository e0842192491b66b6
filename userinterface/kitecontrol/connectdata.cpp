// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/kitecontrol/connectdata.h"

#include "platform/errorhandler.h"
#include "platform/icfg.h"

#include <initializer_list>
#include <memory>

namespace {

// Modes of the product's configuration for reading old and current keys.
constexpr int kOldKeysMode = 2;
constexpr int kCurrentKeysMode = 0;
constexpr int kFlag = 0;

constexpr auto kSourceFile = "userinterface/kitecontrol/connectdata";
// The fixed line numbers that the assertions report, independent of the code's real position.
constexpr quint16 kReadAssertLine = 103;
constexpr quint16 kWriteAssertLine = 181;

constexpr qint32 kDirect = 0;
constexpr qint32 kRemote = 1;
constexpr qint32 kMultiChannelServer = 2;

// Keys that exist only in the old form, in the order of their removal.
constexpr std::initializer_list<const char*> kOldKeys{
    "Type", "Access", "StationAddress", "TimeoutFlag", "Timeout", "MultiChannelServer", "Virtual"};

/// Opens the record's node. Returns null, with an assertion, if the configuration cannot open it, which is a
/// programming error. Callers must return then, because continuing would dereference null.
std::unique_ptr<ICfg> OpenRecord(ICfg* pCfg, int index, quint16 assertLine)
{
    std::unique_ptr<ICfg> pSubCfg(pCfg->OpenChild(QStringLiteral("ConnectData%1").arg(index), kFlag));
    if (!pSubCfg && (ErrorHandler::Instance().EnabledKinds() & ErrorHandler::Assertion))
        _Q_assert("pSubCfg", kSourceFile, assertLine);
    return pSubCfg;
}

/// Clears an address of "0", which the oldest applications stored for an unset address.
void ClearZeroAddress(QString& address)
{
    if (address == QLatin1String("0"))
        address = QLatin1String("");
}

bool ContainsAny(const QString& text, std::initializer_list<const char*> parts)
{
    for (const char* const part : parts)
        if (text.contains(QLatin1String(part)))
            return true;
    return false;
}

} // namespace

ConnectData::ConnectData(int index, ICfg* pCfg)
    : m_nIndex(index)
    , m_sStationName(QLatin1String(""))
    , m_sDeviceType(QLatin1String(""))
    , m_sDeviceAddress(QLatin1String(""))
    , m_sRemoteAddress(QLatin1String(""))
    , m_sSubsystem(QLatin1String(""))
{
    const std::unique_ptr<ICfg> pSubCfg = OpenRecord(pCfg, index, kReadAssertLine);
    if (!pSubCfg)
        return;

    const auto oldString = [&pSubCfg](const QString& key, const QString& defaultValue) {
        return pSubCfg->GetString(key, defaultValue, kOldKeysMode);
    };
    m_sStationName = oldString(QStringLiteral("StationName"), QStringLiteral("Kite Echo-Simulation"));
    m_sDeviceType = oldString(QStringLiteral("Type"), QStringLiteral("Kite Echo/Ember"));
    m_sDeviceAddress = oldString(QStringLiteral("StationAddress"), QStringLiteral("localhost"));
    m_nConnectionSpeed = oldString(QStringLiteral("ConnectionSpeed"), QStringLiteral("")).toInt();
    m_bTimeoutActive = oldString(QStringLiteral("TimeoutFlag"), QStringLiteral("0")).toInt() != 0;
    m_nTimeoutSeconds = oldString(QStringLiteral("Timeout"), QStringLiteral("0")).toInt();
    m_sRemoteAddress = oldString(QStringLiteral("RemoteAddress"), QStringLiteral(""));
    ClearZeroAddress(m_sRemoteAddress);
    if (pSubCfg->GetInt(QStringLiteral("MultiChannelServer"), 0, kOldKeysMode) != 0)
        m_nConnectionType = kMultiChannelServer;
    else
        m_nConnectionType = m_sRemoteAddress.isEmpty() ? kDirect : kRemote;

    for (const char* const key : kOldKeys)
        pSubCfg->Remove(QString::fromLatin1(key), kFlag);

    // The values of the old keys are the defaults here, so current keys win and old records keep their values.
    const auto readString = [&pSubCfg](const QString& key, QString& field) {
        field = pSubCfg->GetString(key, field, kCurrentKeysMode);
    };
    const auto readInt = [&pSubCfg](const QString& key, qint32& field) {
        field = pSubCfg->GetInt(key, field, kCurrentKeysMode);
    };
    readString(QStringLiteral("StationName"), m_sStationName);
    readString(QStringLiteral("DeviceType"), m_sDeviceType);
    readInt(QStringLiteral("ConnectionType"), m_nConnectionType);
    readString(QStringLiteral("DeviceAddress"), m_sDeviceAddress);
    readString(QStringLiteral("RemoteAddress"), m_sRemoteAddress);
    readInt(QStringLiteral("ConnectionSpeed"), m_nConnectionSpeed);
    m_bTimeoutActive = pSubCfg->GetBool(QStringLiteral("TimeoutActive"), m_bTimeoutActive, kCurrentKeysMode);
    readInt(QStringLiteral("TimeoutSeconds"), m_nTimeoutSeconds);
    ClearZeroAddress(m_sRemoteAddress);

    // Clear the address that the connection type does not use.
    if (m_nConnectionType == kDirect)
        m_sRemoteAddress = QLatin1String("");
    else if (m_nConnectionType == kMultiChannelServer)
        m_sDeviceAddress = QLatin1String("");
}

void ConnectData::Write(ICfg* pCfg) const
{
    const std::unique_ptr<ICfg> pSubCfg = OpenRecord(pCfg, m_nIndex, kWriteAssertLine);
    if (!pSubCfg)
        return;

    pSubCfg->SetString(QStringLiteral("StationName"), m_sStationName, kFlag);
    pSubCfg->SetString(QStringLiteral("DeviceType"), m_sDeviceType, kFlag);
    pSubCfg->SetInt(QStringLiteral("ConnectionType"), m_nConnectionType, kFlag);
    pSubCfg->SetString(QStringLiteral("DeviceAddress"), m_sDeviceAddress, kFlag);
    pSubCfg->SetString(QStringLiteral("RemoteAddress"), m_sRemoteAddress, kFlag);
    pSubCfg->SetInt(QStringLiteral("ConnectionSpeed"), m_nConnectionSpeed, kFlag);
    pSubCfg->SetBool(QStringLiteral("TimeoutActive"), m_bTimeoutActive, kFlag);
    pSubCfg->SetInt(QStringLiteral("TimeoutSeconds"), m_nTimeoutSeconds, kFlag);
}

int ConnectData::GetTypeCategory() const
{
    // Checked first, because "Kite Moss E" contains "Kite Moss".
    if (ContainsAny(m_sDeviceType, {"Kite Echo", "Kite Ember", "Kite Moss E"}))
        return 0;
    return ContainsAny(m_sDeviceType, {"Kite Moss", "Kite Alpha", "Plover One", "Plover Five"}) ? 4 : 0;
}
