#include "control/controlserver.h"

#include "control/controlline.h"
#include "control/controlpeer.h"

#include <QCoreApplication>

ControlServer::ControlServer(qint64 maximumDocument, QString program, QObject* parent)
    : QObject(parent)
    , m_maximumDocument(maximumDocument)
    , m_greeting{{QStringLiteral("protocol"), ControlLine::kProtocol},
                 {QStringLiteral("program"), std::move(program)},
                 {QStringLiteral("version"), QCoreApplication::applicationVersion()},
                 {QStringLiteral("process"), QCoreApplication::applicationPid()}}
{
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &ControlServer::Accept);
}

QString ControlServer::Listen(const QString& address)
{
    if (address.isEmpty())
        return QStringLiteral("there is no folder for the socket");
    QLocalServer::removeServer(address);
    return m_server.listen(address) ? QString() : m_server.errorString();
}

void ControlServer::Accept()
{
    while (QLocalSocket* const socket = m_server.nextPendingConnection()) {
        auto* const peer = new ControlPeer(socket, m_greeting, m_maximumDocument, this);
        if (m_peers == kMaximumPeers) {
            peer->Drop(QStringLiteral("there are %1 others").arg(kMaximumPeers));
            continue;
        }
        ++m_peers;
        connect(
            peer, &QObject::destroyed, this, [this] { --m_peers; });
        connect(peer, &ControlPeer::Requested, this,
                [this, peer](const ControlRequest& request) { emit Requested(request, peer); });
    }
}
