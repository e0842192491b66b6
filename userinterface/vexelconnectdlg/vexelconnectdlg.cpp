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
void DeleteAndForget(Object*& pointer)
{
    delete std::exchange(pointer, nullptr);
}

} // namespace

VexelConnectDlgDLL::VexelConnectDlgDLL(const QString& name)
    : IDllInstance(name)
{
    TranslationCenter::Instance().Register(kTranslationDomain);
    m_pModel = new ConnectionsModel(nullptr, QStringLiteral("ConnectionsModel"));
    // Whatever was stored: nothing that an earlier run started is known to this one.
    m_pModel->ResetConnectionStatus();
    m_pAppCounter = new AppCounter(m_pModel, name);
    m_pGui = new VexelConnectDlgGUI(nullptr, m_pModel, m_pAppCounter);
    m_pTcpServer = new TCPServer(m_pGui);
}

VexelConnectDlgDLL::~VexelConnectDlgDLL()
{
    TranslationCenter::Instance().Unregister(kTranslationDomain);
    // The dialog stores the filter, then the model the entries. Launcher and server outlive the two and
    // leave them alone.
    DeleteAndForget(m_pGui);
    DeleteAndForget(m_pModel);
    DeleteAndForget(m_pAppCounter);
    DeleteAndForget(m_pTcpServer);
}

void VexelConnectDlgDLL::SaveSettings()
{
    // The session may end while the dialog says that a file could not be read.
    m_pGui->SettleImport();
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
