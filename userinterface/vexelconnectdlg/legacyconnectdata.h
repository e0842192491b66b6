#pragma once

#include "userinterface/kitecontrol/connectdata.h"
#include "userinterface/vexelconnectdlg/connection.h"

class ConnectionsModel;

/// The legacy record of `entry`, with index -1: the row number is given to it when it is written.
ConnectData ConnectionToConnectData(const Connection& entry);

/// The entry of a legacy record. A device type text that contains none of the known names leaves the default type.
Connection ConnectDataToConnection(const ConnectData& record);

/// Writes every entry of `model`, in row order, as a legacy record into the configuration document
/// "KiteResources/ConnectData", which the user-interface applications read, and saves it. Records left from an earlier,
/// longer list stay; "ConnectionCount" bounds the valid ones.
void ExportLegacyConnectData(const ConnectionsModel& model);
