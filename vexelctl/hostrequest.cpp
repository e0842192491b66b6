// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "vexelctl/hostrequest.h"

#include "control/controlline.h"
#include "host/output/console.h"
#include "host/plugin/pluginlibrary.h"
#include "host/system/signalwatcher.h"
#include "vexelctl/output.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

ExitCode Request(ControlClient& client, const QJsonObject& request, const ControlClient::Receiver& onLine,
                 const QByteArray& document)
{
    const SignalWatcher signalWatcher;
    QObject::connect(&signalWatcher, &SignalWatcher::QuitRequested, &client, &ControlClient::Interrupt);
    const auto take = [&onLine](const QJsonObject& line) {
        if (TypeOf(line) == QLatin1String("message"))
            Console::PrintError(line.value(QLatin1String("text")).toString());
        else
            onLine(line);
    };
    const int code = client.Run(request, take, document);
    if (!client.Error().isEmpty())
        Console::PrintError(client.Error());
    return static_cast<ExitCode>(code);
}

QJsonObject NewRequest(const char* command)
{
    return {{QStringLiteral("command"), QLatin1String(command)}};
}

QString TypeOf(const QJsonObject& line)
{
    return line.value(QLatin1String("type")).toString();
}

ExitCode FailConnect(const ControlClient& client)
{
    return Fail(ExitCode::Busy, client.Error());
}

bool HasSessionOption(const CtlOptions& options, const ControlClient& client)
{
    QString option;
    if (!options.dataDirectory.isEmpty())
        option = QStringLiteral("--data");
    else if (options.name != SessionOptions::kDefaultName)
        option = QStringLiteral("--name");
    else if (options.plugin != PluginLibrary::DefaultFile(QCoreApplication::applicationDirPath()))
        option = QStringLiteral("--plugin");
    if (option.isEmpty())
        return false;
    Console::PrintError(QStringLiteral("a host runs, process %1, and %2 works only without one")
                            .arg(client.Greeting().value(QLatin1String("process")).toInteger())
                            .arg(option));
    return true;
}

Access::Kind Access::Get(const QString& directory)
{
    // Another process may take the lock after it was found free.
    const QDeadlineTimer deadline(ControlLine::kPatience);
    while (true) {
        switch (m_client.Connect(directory)) {
        case ControlClient::State::Connected:
            return Kind::Host;
        case ControlClient::State::Failed:
            return Fail(ExitCode::Busy, m_client.Error());
        case ControlClient::State::NoHost:
            break;
        }
        m_pLock = std::make_unique<InstanceLock>();
        switch (m_pLock->TryLock(directory)) {
        case InstanceLock::Result::Locked:
            if (!m_pLock->Warning().isEmpty())
                Console::PrintError(m_pLock->Warning());
            return Kind::Alone;
        case InstanceLock::Result::Unusable:
            return Fail(ExitCode::Unusable, m_pLock->ErrorText());
        case InstanceLock::Result::Busy:
            if (deadline.hasExpired())
                return Fail(ExitCode::Busy, m_pLock->ErrorText());
        }
    }
}

Access::Kind Access::Fail(ExitCode code, const QString& error)
{
    Console::PrintError(error);
    m_error = code;
    return Kind::None;
}
