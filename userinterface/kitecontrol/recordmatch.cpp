#include "userinterface/kitecontrol/recordmatch.h"

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>

namespace {

/// The device types that one kind of application serves, and whose entries it is told by their names.
constexpr std::array<const char*, 7> kKiteEchoFamily{
    "Kite Alpha + Wren C", "Kite Delta", "Kite Echo", "Kite Ember", "Kite Moss", "Plover One", "Plover Five",
};

/// The letters and digits of `text` in lower case: "Linnet + DF" and "LinnetDF" are the same then.
QString Squeezed(const QString& text)
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

bool IsNamedAfter(const QString& application, const QString& deviceType)
{
    const QString device = Squeezed(deviceType);
    return !device.isEmpty() && Squeezed(application).contains(device);
}

/// Whether an entry with the driver address `remote` is started with `address`: as it stands, or with a port added.
bool LeadsToAddress(const QString& remote, const QString& address)
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

bool IsOfTheDevice(const LaunchArguments& arguments, const ConnectData& record)
{
    return IsNamedAfter(arguments.application, record.m_sDeviceType) ||
           (arguments.hasStation && !arguments.hasAddress && IsOfKiteEchoFamily(record.m_sDeviceType));
}

/// Whether an entry is started with nothing but the application's name. What is connected directly has no driver whose
/// address could be given; the devices without a form of their own are started so however they are connected.
bool LeadsToNameOnly(const ConnectData& record)
{
    constexpr qint32 kRemote = 1;
    constexpr qint32 kMultiChannelServer = 2;
    const bool hasDriver = record.m_nConnectionType == kRemote || record.m_nConnectionType == kMultiChannelServer;
    return !(hasDriver && record.m_sDeviceType == QLatin1String("Kite Cobra"));
}

bool LeadsTo(const LaunchArguments& arguments, const ConnectData& record)
{
    if (arguments.onlyApplication)
        return IsNamedAfter(arguments.application, record.m_sDeviceType) && LeadsToNameOnly(record);
    // Both are asked: an entry of the "Kite Echo" family may be called "Connection=...".
    return (arguments.hasStation && record.m_sStationName == arguments.station) ||
           (arguments.hasAddress && LeadsToAddress(record.m_sRemoteAddress, arguments.address));
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
    const auto ofTheDevice = [&arguments](const ConnectData& record) {
        return IsOfTheDevice(arguments, record);
    };

    RecordMatch match;
    match.fitting = Select(records, [&arguments](const ConnectData& record) { return LeadsTo(arguments, record); });
    if (match.fitting.empty()) {
        match.sameDevice = Select(records, ofTheDevice);
    } else if (match.fitting.size() > 1) {
        std::vector<ConnectData> narrowed = Select(match.fitting, ofTheDevice);
        if (!narrowed.empty())
            match.fitting = std::move(narrowed);
    }
    return match;
}
