// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/idllinstance.h"

#include <QtGlobal>

class AppCounter;
class ConnectionsModel;
class TCPServer;
class VexelConnectDlgGUI;

/// One instance of the plug-in: owns the list of entries, the launcher, the dialog and the server for the starter. GUI
/// thread only.
class VexelConnectDlgDLL : public IDllInstance
{
public:
    /// Creates all parts and loads the entries from the configuration, with status "Free". Does not show the dialog.
    /// @param name the instance name, and the name of the configuration that may contain the path of the mapping file.
    explicit VexelConnectDlgDLL(const QString& name);
    /// Deletes all parts and writes filter and entries to the configuration.
    ~VexelConnectDlgDLL() override;

    /// Writes the filter, then the entries to the configuration.
    void SaveSettings() override;

private:
    VexelConnectDlgGUI* m_pGui = nullptr;
    AppCounter* m_pAppCounter = nullptr;
    ConnectionsModel* m_pModel = nullptr;
    TCPServer* m_pTcpServer = nullptr;
};

/// The library's two exported functions.
extern "C" {

/// Returns a new instance of the plug-in, to be deleted with `ARDestroy`.
/// @param name the instance name, null-terminated; must not be null.
Q_DECL_EXPORT IDllInstance* ARCreateEx(const wchar_t* name);

/// Deletes an instance. Ignores null.
Q_DECL_EXPORT void ARDestroy(IDllInstance* instance);
}
