// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/interfaces.h"

#include "platform/link/tcpaddress.h"
#include "platform/link/tcpconnection.h"
#include "platform/link/tcpserverinterface.h"
#include "platform/tracing.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <limits>
#include <memory>

namespace {

std::atomic g_areServersAllowed = true;

/// Limits `number` to what a timer can hold, about 24 days.
std::chrono::milliseconds TimeOut(quint64 number)
{
    constexpr quint64 kLongest = std::numeric_limits<int>::max();
    return std::chrono::milliseconds(static_cast<int>(std::min(number, kLongest)));
}

} // namespace

IInterface::~IInterface() = default;

IInterfaceCallback::~IInterfaceCallback() = default;

// A member function because the product's interface fixes it as one.
// NOLINTNEXTLINE(readability-convert-member-functions-to-static)
IInterface* CInterfaceCreator::CreateInterface(const QString& address, IInterfaceCallback* callback, quint64 number,
                                               bool flag)
{
    const std::optional<TcpAddress> parsed = TcpAddress::Parse(address);
    if (!parsed || !callback) {
        Trace("platform/interfaces", __LINE__, [&] {
            return parsed ? QStringLiteral("CInterfaceCreator::CreateInterface(): No callback for \"%1\"").arg(address)
                          : QStringLiteral("CInterfaceCreator::CreateInterface(): \"%1\" is not a valid address")
                                .arg(address);
        });
        return nullptr;
    }

    std::unique_ptr<IInterface> created;
    if (parsed->host.isEmpty())
        created = std::make_unique<TcpServerInterface>(parsed->port, callback, TimeOut(number));
    else
        created = std::make_unique<TcpConnection>(*parsed, callback, TimeOut(number));
    if (!flag && !created->Open())
        return nullptr;
    return created.release();
}

void CInterfaceCreator::SetServersAllowed(bool bAllowed)
{
    g_areServersAllowed = bAllowed;
}

bool CInterfaceCreator::AreServersAllowed()
{
    return g_areServersAllowed;
}
