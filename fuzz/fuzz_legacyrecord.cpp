// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// Reads a legacy record from a node with any content and checks each rule separately.

#include "fuzz/entries.h"
#include "platform/cfgcenter.h"
#include "platform/icfg.h"
#include "userinterface/kitecontrol/connectdata.h"
#include "userinterface/vexelconnectdlg/legacyconnectdata.h"

#include <QMap>

#include <memory>

using namespace Fuzzing;

namespace {

using Values = QMap<QString, QString>;

const QStringList kOldKeys{QStringLiteral("Type"),           QStringLiteral("Access"),
                           QStringLiteral("StationAddress"), QStringLiteral("TimeoutFlag"),
                           QStringLiteral("Timeout"),        QStringLiteral("MultiChannelServer"),
                           QStringLiteral("Virtual")};
const QStringList kCurrentKeys{QStringLiteral("StationName"),    QStringLiteral("DeviceType"),
                               QStringLiteral("ConnectionType"), QStringLiteral("DeviceAddress"),
                               QStringLiteral("RemoteAddress"),  QStringLiteral("ConnectionSpeed"),
                               QStringLiteral("TimeoutActive"),  QStringLiteral("TimeoutSeconds")};
const QStringList kOtherKeys{QStringLiteral("Subsystem"), QStringLiteral("typ"), QStringLiteral("Other/Type")};

ICfg* Document()
{
    return CfgCenter::CreateCfg(QStringLiteral("KiteResources/ConnectData"), View::Shared, QString());
}

std::unique_ptr<ICfg> Node(int index)
{
    return std::unique_ptr<ICfg>(Document()->OpenChild(QStringLiteral("ConnectData") + QString::number(index), 0));
}

Values TakeValues(FuzzedDataProvider& input)
{
    static const QStringList kKeys = kOldKeys + kCurrentKeys + kOtherKeys;
    constexpr std::size_t kLongestText = 60;
    Values values;
    const auto present = input.ConsumeIntegral<std::uint32_t>();
    for (int i = 0; i < kKeys.size(); ++i)
        if (present & (1U << i))
            values[kKeys.at(i)] = TakeText(input, kLongestText);
    return values;
}

int IntOf(const Values& values, const char* key, int defaultValue)
{
    bool isNumber = false;
    const int number = values.value(QString::fromLatin1(key)).toInt(&isNumber);
    return isNumber ? number : defaultValue;
}

QString TextOf(const Values& values, const char* key, const QString& defaultValue)
{
    return values.value(QString::fromLatin1(key), defaultValue);
}

bool BoolOf(const Values& values, const char* key, bool defaultValue)
{
    const QString text = values.value(QString::fromLatin1(key)).toLower();
    if (text == QLatin1String("true") || text == QLatin1String("1"))
        return true;
    return text == QLatin1String("false") || text == QLatin1String("0") ? false : defaultValue;
}

QString WithoutZero(const QString& address)
{
    return address == QLatin1String("0") ? QString() : address;
}

ConnectData Expected(int index, const Values& values)
{
    ConnectData record;
    record.m_nIndex = index;
    record.m_sStationName = TextOf(values, "StationName", QStringLiteral("Kite Echo-Simulation"));
    record.m_sDeviceType = TextOf(values, "DeviceType", TextOf(values, "Type", QStringLiteral("Kite Echo/Ember")));
    record.m_sDeviceAddress =
        TextOf(values, "DeviceAddress", TextOf(values, "StationAddress", QStringLiteral("localhost")));
    record.m_sRemoteAddress = WithoutZero(TextOf(values, "RemoteAddress", QString()));
    const int oldType = IntOf(values, "MultiChannelServer", 0) != 0 ? 2 : (record.m_sRemoteAddress.isEmpty() ? 0 : 1);
    record.m_nConnectionType = IntOf(values, "ConnectionType", oldType);
    record.m_nConnectionSpeed = IntOf(values, "ConnectionSpeed", 0);
    record.m_bTimeoutActive = BoolOf(values, "TimeoutActive", IntOf(values, "TimeoutFlag", 0) != 0);
    record.m_nTimeoutSeconds = IntOf(values, "TimeoutSeconds", IntOf(values, "Timeout", 0));
    if (record.m_nConnectionType == 0)
        record.m_sRemoteAddress.clear();
    else if (record.m_nConnectionType == 2)
        record.m_sDeviceAddress.clear();
    return record;
}

bool IsSame(const ConnectData& a, const ConnectData& b)
{
    return a.m_nIndex == b.m_nIndex && a.m_sStationName == b.m_sStationName && a.m_sDeviceType == b.m_sDeviceType &&
           a.m_nConnectionType == b.m_nConnectionType && a.m_sDeviceAddress == b.m_sDeviceAddress &&
           a.m_sRemoteAddress == b.m_sRemoteAddress && a.m_nConnectionSpeed == b.m_nConnectionSpeed &&
           a.m_bTimeoutActive == b.m_bTimeoutActive && a.m_nTimeoutSeconds == b.m_nTimeoutSeconds &&
           a.m_nStatus == b.m_nStatus && a.m_bSelected == b.m_bSelected && a.m_sSubsystem == b.m_sSubsystem &&
           a.m_nReserved == b.m_nReserved;
}

void RequireNode(int index, const Values& values)
{
    const auto node = Node(index);
    const QString missing(QChar(0xFFFF));
    for (const QString& key : kOldKeys)
        Require(node->GetString(key, missing, 0) == missing, "keys of the old form only are removed");
    for (const QString& key : kCurrentKeys + kOtherKeys)
        Require(node->GetString(key, missing, 0) == values.value(key, missing), "all other keys are unchanged");
}

/// The lowest device type whose name is part of the record's text; if none, the default.
int ExpectedType(const QString& text)
{
    for (int type = 0; type < Connection::kDeviceTypeCount; ++type)
        if (text.indexOf(Connection::DeviceTypeName(type), 0, Qt::CaseInsensitive) >= 0)
            return type;
    return Connection().DeviceType;
}

void RequireConversions(const ConnectData& record)
{
    const Connection entry = ConnectDataToConnection(record);
    Require(entry.DeviceType == ExpectedType(record.m_sDeviceType), "the type whose name is part of the record's text");
    Require(entry.TimeoutSeconds == (record.m_bTimeoutActive ? record.m_nTimeoutSeconds : 0),
            "no time-out unless it is active");

    const ConnectData back = ConnectionToConnectData(entry);
    Require(back.m_nIndex == -1, "a record made from an entry has no number");
    Require(back.m_bTimeoutActive == (entry.TimeoutSeconds > 0), "a time-out is active above 0");
    Connection again = ConnectDataToConnection(back);
    again.TimeoutSeconds = entry.TimeoutSeconds; // a record stores a negative time-out as none
    Require(Fuzzing::IsSame(again, entry), "an entry survives conversion to a record and back");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Tidy tidy;
    FuzzedDataProvider input(data, size);
    const int index = input.ConsumeBool() ? input.ConsumeIntegral<int>() : 0;
    const Values values = TakeValues(input);
    {
        const auto node = Node(index);
        for (auto value = values.cbegin(); value != values.cend(); ++value)
            node->SetString(value.key(), value.value(), 0);
    }

    const ConnectData record(index, Document());
    Require(IsSame(record, Expected(index, values)), "the record matches the node");
    RequireNode(index, values);
    Require(IsSame(ConnectData(index, Document()), Expected(index,
                                                            [&values] {
                                                                Values current = values;
                                                                for (const QString& key : kOldKeys)
                                                                    current.remove(key);
                                                                return current;
                                                            }())),
            "read again, the record matches the remaining keys");

    record.Write(Document());
    Require(IsSame(ConnectData(index, Document()), record), "what is written is read back");

    RequireConversions(record);
    const int category = record.GetTypeCategory();
    Require(category == 0 || category == 4, "a category is 0 or 4");
    return 0;
}
