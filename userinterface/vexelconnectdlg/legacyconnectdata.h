// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "userinterface/kitecontrol/connectdata.h"
#include "userinterface/vexelconnectdlg/connection.h"

#include <functional>

class ConnectionsModel;
class IDocumentWriter;

/// Returns the legacy record of `entry`, with index -1: it gets its row number when it is written.
ConnectData ConnectionToConnectData(const Connection& entry);

/// Returns the entry of a legacy record, with the default device type if the record's text contains no known name.
Connection ConnectDataToConnection(const ConnectData& record);

/// Writes all entries of `model`, in row order, as legacy records to the configuration document
/// "KiteResources/ConnectData", which the user-interface applications read, and saves it. Does not remove the surplus
/// records of a longer list; "ConnectionCount" is the number of valid ones.
///
/// The records are those of the list at the time of the call. `writer` (may be null) saves them in another thread, and
/// calls `whileWaiting` if that takes longer than a user notices.
void ExportLegacyConnectData(const ConnectionsModel& model, IDocumentWriter* writer,
                             const std::function<bool()>& whileWaiting);
