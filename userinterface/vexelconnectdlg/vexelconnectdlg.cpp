// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/vexelconnectdlg.h"

#include "platform/translationcenter.h"
#include "userinterface/vexelconnectdlg/appcounter.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/tcpserver.h"
#include "userinterface/vexelconnectdlg/vexelconnectdlggui.h"

#include <utility>

namespace {

const QString kTranslationDomain = QStringLiteral("VexelConnectDlg");

template <typename Object>
void DeleteAndReset(Object*& pointer)
{
    delete std::exchange(pointer, nullptr);
}

} // namespace

VexelConnectDlgDLL::VexelConnectDlgDLL(const QString& name)
    : IDllInstance(name)
{
    TranslationCenter::Instance().Register(kTranslationDomain);
    m_pModel = new ConnectionsModel(nullptr, QStringLiteral("ConnectionsModel"));
    // The stored statuses are obsolete: this process does not know the applications of an earlier run.
    m_pModel->ResetConnectionStatus();
    m_pAppCounter = new AppCounter(m_pModel, name);
    m_pGui = new VexelConnectDlgGUI(nullptr, m_pModel, m_pAppCounter);
    m_pTcpServer = new TCPServer(m_pGui);
}

VexelConnectDlgDLL::~VexelConnectDlgDLL()
{
    TranslationCenter::Instance().Unregister(kTranslationDomain);
    // The dialog stores the filter, then the model stores the entries. Launcher and server are deleted last and do not
    // access either.
    DeleteAndReset(m_pGui);
    DeleteAndReset(m_pModel);
    DeleteAndReset(m_pAppCounter);
    DeleteAndReset(m_pTcpServer);
}

void VexelConnectDlgDLL::SaveSettings()
{
    // The session may end while the message box about a failed import is open.
    m_pGui->RollBackImport();
    m_pGui->StoreFilterSettings();
    m_pModel->SetConfiguration();
}

IDllInstance* ARCreateEx(const wchar_t* name)
{
    return new VexelConnectDlgDLL(QString::fromWCharArray(name));
}

void ARDestroy(IDllInstance* instance)
{
    delete instance;
}
