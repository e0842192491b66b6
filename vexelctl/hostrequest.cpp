#include "vexelctl/hostrequest.h"

#include "host/output/console.h"
#include "host/system/signalwatcher.h"
#include "vexelctl/output.h"

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
