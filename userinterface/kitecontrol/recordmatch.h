// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "userinterface/kitecontrol/connectdata.h"

#include <QString>
#include <QStringList>

#include <vector>

/// The parsed command line of a started application.
///
/// It identifies the entry in one of three ways: applications of the "Kite Echo" family get "Server" and the entry's
/// name; others get "Connection=<driver address>", to which the dialog adds the device type's default port if it has
/// none; the rest get only the application's name.
struct LaunchArguments
{
    QString application;          ///< the first argument up to its ":"; empty if there is none
    bool onlyApplication = false; ///< the application's name is the only argument
    bool hasStation = false;
    QString station; ///< the last argument, if "Server" precedes it
    bool hasAddress = false;
    QString address; ///< from "Connection=<address>" in the last argument

    static LaunchArguments Parse(const QStringList& arguments);
};

/// The records that match a command line: connecting their entry results in that command line.
///
/// If there are several, the device type decides as far as the command line shows it: "Server" and a name mean the
/// "Kite Echo" family, and an application's name may contain the device type, such as "KiteBravoControl".
struct RecordMatch
{
    std::vector<ConnectData> fitting;    ///< exactly one if the match is unique
    std::vector<ConnectData> sameDevice; ///< if none fits: those with the device type of the command line

    static RecordMatch Find(const LaunchArguments& arguments, const std::vector<ConnectData>& records);
};
