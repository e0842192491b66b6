// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/views/columnhelp.h"

#include "userinterface/vexelconnectdlg/connection.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"

#include <array>

namespace {

QString ConnectionTypeHelp()
{
    const std::array<QString, Connection::kConnectionTypeCount> descriptions{
        ConnectionsModel::tr("userinterface does directly connect to the resource"),
        ConnectionsModel::tr("userinterface does connect to a driver application; driver application is connected to "
                             "resource"),
        ConnectionsModel::tr("KiteControl-specific connection type (see respective manual)"),
    };
    QString help = ConnectionsModel::tr("The connection type can be one of the following:\n");
    for (int type = 0; type < Connection::kConnectionTypeCount; ++type) {
        help += QStringLiteral("\n- \"%1\" --> %2\n")
                    .arg(Connection::ConnectionTypeName(type), descriptions.at(static_cast<std::size_t>(type)));
    }
    return help;
}

} // namespace

QVariant ConnectionsColumnHelp(int section)
{
    switch (section) {
    case ConnectionsModel::ColumnSelected:
        return ConnectionsModel::tr("Select the connections you want to establish via clicking onto the square.\n\n"
                                    "Selected entries show a green check indicator.\n\n"
                                    "Connections that have yet been established show a gray check indicator.");
    case ConnectionsModel::ColumnName:
        return ConnectionsModel::tr("The connection name is for operator information only.\n"
                                    "Enter what ever you want in this field.");
    case ConnectionsModel::ColumnStatus:
        return ConnectionsModel::tr(
            "The status of the connection tells if the connection has yet been established or not.");
    case ConnectionsModel::ColumnDeviceType:
        return ConnectionsModel::tr("A major setting of a conneciton entry is the type of hardware to which we want to "
                                    "connect to.\n\n"
                                    "Enter the appropriate type here.");
    case ConnectionsModel::ColumnConnectionType:
        return ConnectionTypeHelp();
    case ConnectionsModel::ColumnDeviceAddress:
        return ConnectionsModel::tr("If the userinterface directly connects to the hardware resource\n"
                                    "(does not use a remote connection via a driver application)\n"
                                    "enter the IP-address of the hardware resource here.");
    case ConnectionsModel::ColumnDriverAddress:
        return ConnectionsModel::tr("If the userinterface does not directly connect to the hardware resource\n"
                                    "but connects to a driver application (which is connected to the resource)\n"
                                    "enter the IP-address of the driver's host here.");
    case ConnectionsModel::ColumnLinkSpeed:
        return ConnectionsModel::tr("Select the entry that describes the data link between this computer and the "
                                    "computer hosting the KiteServer best.\n"
                                    "The strength of the data compression between userinterface and server will be "
                                    "applied according to this setting.");
    case ConnectionsModel::ColumnTimeout:
        return ConnectionsModel::tr("If the timeout time is set to a value greater than 0 seconds KiteControl will "
                                    "request user input (mouse clicks or keyboard strokes) within the specified time.\n"
                                    "If this does not happen the program will terminate and release the "
                                    "directionfinder.");
    case ConnectionsModel::ColumnSubsystem:
        return ConnectionsModel::tr("The Corvus subsystem is only used in connection with the Tally toolbar.\n"
                                    "Enter the subsystem to which the Tally belongs to here.\n\n"
                                    "If you have no idea about what is meant with Corvus or Tally just leave this "
                                    "field empty.");
    default:
        return {};
    }
}
