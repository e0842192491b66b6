// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/connection.h"

#include <QCoreApplication>

#include <array>

namespace {

constexpr auto kFallbackSource = QT_TRANSLATE_NOOP("Connection", "No string representation for ID %1");
// Translated once, when the library is loaded, so a later change of language does not affect it.
const QString kFallbackText = QCoreApplication::translate("Connection", kFallbackSource);

// Product names: the same in every language.
constexpr std::array<const char*, Connection::kDeviceTypeCount> kDeviceTypeNames{
    "Kite Alpha + Wren C", "Kite Bravo", "Kite Cobra",  "Kite Delta", "Kite Echo", "Kite Ember",
    "Kite Moss",           "Plover One", "Plover Five", "Heron",      "Wren D",    "Pipit",
    "Kite Alpha + Finch",  "Kite Fjord", "Linnet + DF",
};

constexpr std::array<const char*, Connection::kConnectionTypeCount> kConnectionTypeNames{
    QT_TRANSLATE_NOOP("Connection", "Direct Connection"),
    QT_TRANSLATE_NOOP("Connection", "Remote Connection"),
    QT_TRANSLATE_NOOP("Connection", "MultiChannel Server"),
};

constexpr std::array<const char*, Connection::kLinkSpeedCount> kLinkSpeedNames{
    QT_TRANSLATE_NOOP("Connection", "LAN"),        QT_TRANSLATE_NOOP("Connection", "ISDN"),
    QT_TRANSLATE_NOOP("Connection", "Fast Modem"), QT_TRANSLATE_NOOP("Connection", "Slow Modem"),
    QT_TRANSLATE_NOOP("Connection", "GSM"),        QT_TRANSLATE_NOOP("Connection", "UMTS"),
    QT_TRANSLATE_NOOP("Connection", "Radio Link"),
};

constexpr std::array<const char*, Connection::kConnectionStatusCount> kStatusNames{
    QT_TRANSLATE_NOOP("Connection", "Free"),
    QT_TRANSLATE_NOOP("Connection", "In Use"),
};

template <std::size_t N>
const char* TextAt(const std::array<const char*, N>& texts, int value)
{
    return value >= 0 && static_cast<std::size_t>(value) < N ? texts[static_cast<std::size_t>(value)] : nullptr;
}

QString TranslatedOrFallback(const char* text, int value)
{
    return text ? Connection::tr(text) : kFallbackText.arg(value);
}

QString EnglishOrFallback(const char* text, int value)
{
    return text ? QString::fromLatin1(text) : QString::fromLatin1(kFallbackSource).arg(value);
}

} // namespace

Connection::Connection()
    : ConnectionName(tr("enter connection name here"))
    , DeviceAddress(QLatin1String(""))
    , DriverAddress(QLatin1String(""))
    , Subsystem(QLatin1String(""))
{
}

Connection::Connection(const Connection& other)
    : QObject() // NOLINT(readability-redundant-member-init): compilers warn about a copy constructor without it
    , ConnectionName(other.ConnectionName)
    , DeviceType(other.DeviceType)
    , ConnectionType(other.ConnectionType)
    , DeviceAddress(other.DeviceAddress)
    , DriverAddress(other.DriverAddress)
    , LinkSpeed(other.LinkSpeed)
    , TimeoutSeconds(other.TimeoutSeconds)
    , ConnectionStatus(other.ConnectionStatus)
    , Selected(other.Selected)
    , Subsystem(other.Subsystem)
{
}

Connection& Connection::operator=(const Connection& other)
{
    if (this != &other) {
        ConnectionName = other.ConnectionName;
        DeviceType = other.DeviceType;
        ConnectionType = other.ConnectionType;
        DeviceAddress = other.DeviceAddress;
        DriverAddress = other.DriverAddress;
        LinkSpeed = other.LinkSpeed;
        TimeoutSeconds = other.TimeoutSeconds;
        ConnectionStatus = other.ConnectionStatus;
        Selected = other.Selected;
        Subsystem = other.Subsystem;
    }
    return *this;
}

bool Connection::operator==(const Connection& other) const
{
    return ConnectionName == other.ConnectionName && DeviceType == other.DeviceType &&
           ConnectionType == other.ConnectionType && DeviceAddress == other.DeviceAddress &&
           DriverAddress == other.DriverAddress && LinkSpeed == other.LinkSpeed &&
           TimeoutSeconds == other.TimeoutSeconds && Subsystem == other.Subsystem;
}

QString Connection::StatusName(int value)
{
    return TranslatedOrFallback(TextAt(kStatusNames, value), value);
}

QString Connection::ConnectionTypeName(int value)
{
    return TranslatedOrFallback(TextAt(kConnectionTypeNames, value), value);
}

QString Connection::DeviceTypeName(int value)
{
    const char* const text = TextAt(kDeviceTypeNames, value);
    return text ? QString::fromLatin1(text) : kFallbackText.arg(value);
}

QString Connection::LinkSpeedName(int value)
{
    return TranslatedOrFallback(TextAt(kLinkSpeedNames, value), value);
}

QString Connection::EnglishStatusName(int value)
{
    return EnglishOrFallback(TextAt(kStatusNames, value), value);
}

QString Connection::EnglishConnectionTypeName(int value)
{
    return EnglishOrFallback(TextAt(kConnectionTypeNames, value), value);
}

QString Connection::EnglishDeviceTypeName(int value)
{
    return EnglishOrFallback(TextAt(kDeviceTypeNames, value), value);
}

QString Connection::EnglishLinkSpeedName(int value)
{
    return EnglishOrFallback(TextAt(kLinkSpeedNames, value), value);
}

int Connection::ApplicationDeviceType(int deviceType)
{
    switch (deviceType) {
    case KiteAlphaWrenC:
    case KiteDelta:
    case KiteEcho:
    case KiteEmber:
    case KiteMoss:
    case PloverOne:
    case PloverFive:
        return KiteEcho;
    default:
        return deviceType;
    }
}
