#pragma once

#include "platform/idllinstance.h"

#include <QtGlobal>

class AppCounter;
class ConnectionsModel;
class TCPServer;
class VexelConnectDlgGUI;

/// One instance of the plug-in: owns the list of entries, the launcher, the dialog and the link to the
/// starter, and saves and tears them down. GUI thread only.
class VexelConnectDlgDLL : public IDllInstance
{
public:
    /// Builds everything; the entries come from the configuration, all of them "Free". The dialog is not shown.
    /// @param name the instance name; also names the configuration that may hold the path of the mapping file.
    explicit VexelConnectDlgDLL(const QString& name);
    /// Tears everything down; filter and entries are put into the configuration.
    ~VexelConnectDlgDLL() override;

    /// Puts the filter, then the entries into the configuration.
    void SaveSettings() override;

private:
    VexelConnectDlgGUI* m_pGui = nullptr;
    AppCounter* m_pAppCounter = nullptr;
    ConnectionsModel* m_pModel = nullptr;
    TCPServer* m_pTcpServer = nullptr;
};

/// The library's two exported functions.
extern "C" {

/// A new instance of the plug-in; the caller gives it back through `ARDestroy`.
/// @param name NUL-terminated, in the platform's wide characters; must not be null.
Q_DECL_EXPORT IDllInstance* ARCreateEx(const wchar_t* name);

/// Deletes an instance; null is ignored.
Q_DECL_EXPORT void ARDestroy(IDllInstance* instance);
}
