#pragma once

#include "userinterface/kitecontrol/connectdata.h"

#include <QString>
#include <QStringList>

#include <vector>

/// What the command line of a started application says.
///
/// It names its entry in one of three ways. Behind "Server" stands the entry's name: the applications of the
/// "Kite Echo" family. "Connection=%1" gives the address of the driver; the dialog has added the default port of the
/// device type where the entry has none. And some applications are given nothing but their own name.
struct LaunchArguments
{
    QString application;          ///< the first argument up to its ":"; empty: there is none
    bool onlyApplication = false; ///< there is no argument but the first
    bool hasStation = false;
    QString station; ///< the last argument, where "Server" stands in front of it
    bool hasAddress = false;
    QString address; ///< what the last argument gives as "Connection=%1"

    static LaunchArguments Parse(const QStringList& arguments);
};

/// Which records belong to a command line: those that lead to it when they are connected.
///
/// Where several do, the device type decides as far as the command line tells it: a name behind "Server" is for the
/// "Kite Echo" family, and an application's name may hold the device type, as "KiteBravoControl" does.
struct RecordMatch
{
    std::vector<ConnectData> fitting; ///< exactly one when it is certain
    /// While none fits: those of the device type that the command line tells.
    std::vector<ConnectData> sameDevice;

    static RecordMatch Find(const LaunchArguments& arguments, const std::vector<ConnectData>& records);
};
