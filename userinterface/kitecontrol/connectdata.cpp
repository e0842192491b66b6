#include "userinterface/kitecontrol/connectdata.h"

#include "platform/errorhandler.h"
#include "platform/icfg.h"

#include <initializer_list>
#include <memory>

namespace {

// The product's configuration distinguishes reading the old keys from reading the current ones.
constexpr int s_oldKeysMode = 2;
constexpr int s_currentKeysMode = 0;
constexpr int s_flag = 0;

constexpr auto s_sourceFile = "userinterface/kitecontrol/connectdata";
// The places that the assertions name, whatever lines they stand on today.
constexpr quint16 s_readAssertLine = 103;
constexpr quint16 s_writeAssertLine = 181;

constexpr qint32 s_direct = 0;
constexpr qint32 s_remote = 1;
constexpr qint32 s_multiChannelServer = 2;

// The keys that only the old form has, in the order of their removal.
constexpr std::initializer_list<const char*> s_oldKeys{
    "Type", "Access", "StationAddress", "TimeoutFlag", "Timeout", "MultiChannelServer", "Virtual"};

/// The record's node, or null after having said so: a configuration that cannot open it is a programming error. Its
/// callers then leave, because going on would dereference the null pointer.
std::unique_ptr<ICfg> OpenRecord(ICfg* pCfg, int index, quint16 assertLine)
{
    std::unique_ptr<ICfg> pSubCfg(pCfg->OpenChild(QStringLiteral("ConnectData%1").arg(index), s_flag));
    if (!pSubCfg && (ErrorHandler::Instance().EnabledKinds() & ErrorHandler::Assertion)) {
        _Q_assert("pSubCfg", s_sourceFile, assertLine);
    }
    return pSubCfg;
}

/// "0" is how the oldest applications stored an address that is not set.
void ClearZeroAddress(QString& address)
{
    if (address == QLatin1String("0")) {
        address = QLatin1String("");
    }
}

bool ContainsAny(const QString& text, std::initializer_list<const char*> parts)
{
    for (const char* const part : parts) {
        if (text.contains(QLatin1String(part))) {
            return true;
        }
    }
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
    const std::unique_ptr<ICfg> pSubCfg = OpenRecord(pCfg, index, s_readAssertLine);
    if (!pSubCfg) {
        return;
    }

    const auto oldString = [&pSubCfg](const QString& key, const QString& defaultValue) {
        return pSubCfg->GetString(key, defaultValue, s_oldKeysMode);
    };
    m_sStationName = oldString(QStringLiteral("StationName"), QStringLiteral("Kite Echo-Simulation"));
    m_sDeviceType = oldString(QStringLiteral("Type"), QStringLiteral("Kite Echo/Ember"));
    m_sDeviceAddress = oldString(QStringLiteral("StationAddress"), QStringLiteral("localhost"));
    m_nConnectionSpeed = oldString(QStringLiteral("ConnectionSpeed"), QStringLiteral("")).toInt();
    m_bTimeoutActive = oldString(QStringLiteral("TimeoutFlag"), QStringLiteral("0")).toInt() != 0;
    m_nTimeoutSeconds = oldString(QStringLiteral("Timeout"), QStringLiteral("0")).toInt();
    m_sRemoteAddress = oldString(QStringLiteral("RemoteAddress"), QStringLiteral(""));
    ClearZeroAddress(m_sRemoteAddress);
    if (pSubCfg->GetInt(QStringLiteral("MultiChannelServer"), 0, s_oldKeysMode) != 0) {
        m_nConnectionType = s_multiChannelServer;
    } else {
        m_nConnectionType = m_sRemoteAddress.isEmpty() ? s_direct : s_remote;
    }

    for (const char* const key : s_oldKeys) {
        pSubCfg->Remove(QString::fromLatin1(key), s_flag);
    }

    // What the old keys gave is the default now, so a current key wins and an old record keeps its values.
    const auto readString = [&pSubCfg](const QString& key, QString& field) {
        field = pSubCfg->GetString(key, field, s_currentKeysMode);
    };
    const auto readInt = [&pSubCfg](const QString& key, qint32& field) {
        field = pSubCfg->GetInt(key, field, s_currentKeysMode);
    };
    readString(QStringLiteral("StationName"), m_sStationName);
    readString(QStringLiteral("DeviceType"), m_sDeviceType);
    readInt(QStringLiteral("ConnectionType"), m_nConnectionType);
    readString(QStringLiteral("DeviceAddress"), m_sDeviceAddress);
    readString(QStringLiteral("RemoteAddress"), m_sRemoteAddress);
    readInt(QStringLiteral("ConnectionSpeed"), m_nConnectionSpeed);
    m_bTimeoutActive = pSubCfg->GetBool(QStringLiteral("TimeoutActive"), m_bTimeoutActive, s_currentKeysMode);
    readInt(QStringLiteral("TimeoutSeconds"), m_nTimeoutSeconds);
    ClearZeroAddress(m_sRemoteAddress);

    // The address that the connection type does not use.
    if (m_nConnectionType == s_direct) {
        m_sRemoteAddress = QLatin1String("");
    } else if (m_nConnectionType == s_multiChannelServer) {
        m_sDeviceAddress = QLatin1String("");
    }
}

void ConnectData::Write(ICfg* pCfg) const
{
    const std::unique_ptr<ICfg> pSubCfg = OpenRecord(pCfg, m_nIndex, s_writeAssertLine);
    if (!pSubCfg) {
        return;
    }

    pSubCfg->SetString(QStringLiteral("StationName"), m_sStationName, s_flag);
    pSubCfg->SetString(QStringLiteral("DeviceType"), m_sDeviceType, s_flag);
    pSubCfg->SetInt(QStringLiteral("ConnectionType"), m_nConnectionType, s_flag);
    pSubCfg->SetString(QStringLiteral("DeviceAddress"), m_sDeviceAddress, s_flag);
    pSubCfg->SetString(QStringLiteral("RemoteAddress"), m_sRemoteAddress, s_flag);
    pSubCfg->SetInt(QStringLiteral("ConnectionSpeed"), m_nConnectionSpeed, s_flag);
    pSubCfg->SetBool(QStringLiteral("TimeoutActive"), m_bTimeoutActive, s_flag);
    pSubCfg->SetInt(QStringLiteral("TimeoutSeconds"), m_nTimeoutSeconds, s_flag);
}

int ConnectData::GetTypeCategory() const
{
    // First, because "Kite Moss E" begins with "Kite Moss".
    if (ContainsAny(m_sDeviceType, {"Kite Echo", "Kite Ember", "Kite Moss E"})) {
        return 0;
    }
    return ContainsAny(m_sDeviceType, {"Kite Moss", "Kite Alpha", "Plover One", "Plover Five"}) ? 4 : 0;
}
