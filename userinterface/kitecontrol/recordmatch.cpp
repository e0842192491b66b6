// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/kitecontrol/recordmatch.h"

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>

namespace {

/// Device types that are served by one kind of application, which gets the entry's name.
constexpr std::array<const char*, 7> kKiteEchoFamily{
    "Kite Alpha + Wren C", "Kite Delta", "Kite Echo", "Kite Ember", "Kite Moss", "Plover One", "Plover Five",
};

/// Returns the letters and digits of `text` in lower case, so that "Linnet + DF" equals "LinnetDF".
QString Normalized(const QString& text)
{
    QString result;
    for (const QChar character : text)
        if (character.isLetterOrNumber())
            result.append(character.toLower());
    return result;
}

bool IsOfKiteEchoFamily(const QString& deviceType)
{
    return std::any_of(
        kKiteEchoFamily.begin(), kKiteEchoFamily.end(),
        [&deviceType](const char* name) { return deviceType == QLatin1String(name); });
}

bool ContainsDeviceType(const QString& application, const QString& deviceType)
{
    const QString device = Normalized(deviceType);
    return !device.isEmpty() && Normalized(application).contains(device);
}

/// Returns whether an entry with the driver address `remote` is started with `address`, unchanged or with a port added.
bool MatchesAddress(const QString& remote, const QString& address)
{
    if (remote == address)
        return true;
    if (!address.startsWith(remote) || remote.contains(QLatin1Char(':')))
        return false;
    const QStringView port = QStringView(address).mid(remote.size());
    return port.size() > 1 && port.front() == QLatin1Char(':') &&
           std::all_of(port.begin() + 1, port.end(),
                       [](QChar digit) { return digit >= QLatin1Char('0') && digit <= QLatin1Char('9'); });
}

bool MatchesDeviceType(const LaunchArguments& arguments, const ConnectData& record)
{
    return ContainsDeviceType(arguments.application, record.m_sDeviceType) ||
           (arguments.hasStation && !arguments.hasAddress && IsOfKiteEchoFamily(record.m_sDeviceType));
}

/// Returns whether an entry may be started with only the application's name. "Kite Cobra" also gets a driver address,
/// unless it is connected directly; for other device types the connection type does not matter.
bool IsStartedByNameOnly(const ConnectData& record)
{
    constexpr qint32 kRemote = 1;
    constexpr qint32 kMultiChannelServer = 2;
    const bool hasDriver = record.m_nConnectionType == kRemote || record.m_nConnectionType == kMultiChannelServer;
    return !(hasDriver && record.m_sDeviceType == QLatin1String("Kite Cobra"));
}

bool Matches(const LaunchArguments& arguments, const ConnectData& record)
{
    if (arguments.onlyApplication)
        return ContainsDeviceType(arguments.application, record.m_sDeviceType) && IsStartedByNameOnly(record);
    // Check both, because an entry of the "Kite Echo" family may be called "Connection=...".
    return (arguments.hasStation && record.m_sStationName == arguments.station) ||
           (arguments.hasAddress && MatchesAddress(record.m_sRemoteAddress, arguments.address));
}

std::vector<ConnectData> Select(const std::vector<ConnectData>& records,
                                const std::function<bool(const ConnectData&)>& wanted)
{
    std::vector<ConnectData> result;
    std::copy_if(records.begin(), records.end(), std::back_inserter(result), wanted);
    return result;
}

} // namespace

LaunchArguments LaunchArguments::Parse(const QStringList& arguments)
{
    const QLatin1String connection("Connection=");

    LaunchArguments result;
    result.application = arguments.value(0).section(QLatin1Char(':'), 0, 0);
    result.onlyApplication = arguments.size() == 1;
    if (arguments.size() > 1 && arguments.constLast().startsWith(connection)) {
        result.hasAddress = true;
        result.address = arguments.constLast().mid(connection.size());
    }
    if (arguments.size() > 2 && arguments.at(arguments.size() - 2) == QLatin1String("Server")) {
        result.hasStation = true;
        result.station = arguments.constLast();
    }
    return result;
}

RecordMatch RecordMatch::Find(const LaunchArguments& arguments, const std::vector<ConnectData>& records)
{
    const auto matchesDeviceType = [&arguments](const ConnectData& record) {
        return MatchesDeviceType(arguments, record);
    };

    RecordMatch match;
    match.fitting = Select(records, [&arguments](const ConnectData& record) { return Matches(arguments, record); });
    if (match.fitting.empty()) {
        match.sameDevice = Select(records, matchesDeviceType);
    } else if (match.fitting.size() > 1) {
        std::vector<ConnectData> narrowed = Select(match.fitting, matchesDeviceType);
        if (!narrowed.empty())
            match.fitting = std::move(narrowed);
    }
    return match;
}
