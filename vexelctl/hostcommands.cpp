#include "vexelctl/hostcommands.h"

#include "control/controlclient.h"
#include "host/output/console.h"
#include "vexelctl/changeprinter.h"
#include "vexelctl/hostrequest.h"
#include "vexelctl/offscreen.h"
#include "vexelctl/output.h"
#include "vexelctl/picturefile.h"

#include <QJsonArray>
#include <QJsonObject>

#include <functional>
#include <initializer_list>

namespace {

using HostState = ControlClient::State;

/// Speaks with the running host in `withHost`, or returns the result of `withoutHost`.
ExitCode CallHost(const CtlOptions& options, const std::function<ExitCode(ControlClient& client)>& withHost,
                  const std::function<ExitCode()>& withoutHost)
{
    ControlClient client;
    switch (client.Connect(options.configDirectory)) {
    case HostState::Connected:
        return withHost(client);
    case HostState::Failed:
        return FailConnect(client);
    case HostState::NoHost:
        break;
    }
    return withoutHost();
}

ExitCode FailNoHost(const CtlOptions& options)
{
    return Fail(ExitCode::Busy,
                QStringLiteral("no host runs on the configuration directory %1").arg(options.configDirectory));
}

ExitCode Succeed()
{
    return ExitCode::Done;
}

ControlClient::Receiver Nothing()
{
    return [](const QJsonObject&) {
    };
}

/// `code`, or `Unusable` if everything else was done.
ExitCode WithOutput(ExitCode code, const ChangePrinter& printer, std::initializer_list<const PictureFile*> pictures)
{
    bool hasFailed = printer.HasFailed();
    for (const PictureFile* picture : pictures)
        hasFailed = hasFailed || picture->IsMissing();
    return code == ExitCode::Done && hasFailed ? ExitCode::Unusable : code;
}

} // namespace

namespace HostCommands {

ExitCode Connect(const CtlOptions& options)
{
    PictureFile during("during", options.screenshotDuring);
    PictureFile atEnd("end", options.screenshot);
    if (during.IsObstructed() || atEnd.IsObstructed())
        return ExitCode::Unusable;
    ChangePrinter printer(options.json);
    const auto take = [&](const QJsonObject& line) {
        during.Take(line);
        atEnd.Take(line);
        printer.Print(line);
    };
    QJsonObject request = NewRequest("connect");
    request.insert(QStringLiteral("names"), QJsonArray::fromStringList(options.names));
    request.insert(QStringLiteral("selected"), options.selected);
    request.insert(QStringLiteral("wait"), options.wait);
    request.insert(QStringLiteral("ignoreExitCodes"), options.ignoreExitCodes);
    request.insert(QStringLiteral("pictureDuring"), !options.screenshotDuring.isEmpty());
    request.insert(QStringLiteral("picture"), !options.screenshot.isEmpty());

    Access access;
    ExitCode code = ExitCode::Busy;
    switch (access.Get(options.configDirectory)) {
    case Access::Kind::Host:
        if (HasSessionOption(options, access.Client()))
            return ExitCode::Busy;
        code = Request(access.Client(), request, take);
        break;
    case Access::Kind::Alone:
        Console::PrintError(QStringLiteral("no host runs, so the applications end with this command"));
        request.insert(QStringLiteral("wait"), true);
        code = OffScreen::Run(options, access.Lock(), request, take);
        break;
    case Access::Kind::None:
        return access.Error();
    }
    return WithOutput(code, printer, {&during, &atEnd});
}

ExitCode Screenshot(const CtlOptions& options)
{
    const QString file = options.files.constFirst();
    PictureFile now("now", file);
    if (now.IsObstructed())
        return ExitCode::Unusable;
    return CallHost(
        options,
        [&](ControlClient& client) {
            if (HasSessionOption(options, client))
                return ExitCode::Busy;
            const ExitCode code =
                Request(client, NewRequest("picture"), [&now](const QJsonObject& line) { now.Take(line); });
            return code == ExitCode::Done && now.IsMissing() ? ExitCode::Unusable : code;
        },
        [&] {
            QByteArray picture;
            const ExitCode code = OffScreen::GetPicture(options, picture);
            return code == ExitCode::Done ? WriteResult(file, picture) : code;
        });
}

ExitCode Wait(const CtlOptions& options)
{
    PictureFile atEnd("end", options.screenshot);
    if (atEnd.IsObstructed())
        return ExitCode::Unusable;
    ChangePrinter printer(options.json);
    QJsonObject request = NewRequest("wait");
    request.insert(QStringLiteral("ignoreExitCodes"), options.ignoreExitCodes);
    request.insert(QStringLiteral("picture"), !options.screenshot.isEmpty());
    return CallHost(
        options,
        [&](ControlClient& client) {
            const ExitCode code = Request(client, request, [&](const QJsonObject& line) {
                atEnd.Take(line);
                printer.Print(line);
            });
            return WithOutput(code, printer, {&atEnd});
        },
        [&] {
            if (options.screenshot.isEmpty())
                return ExitCode::Done;
            QByteArray picture;
            const ExitCode code = OffScreen::GetPicture(options, picture);
            return code == ExitCode::Done ? WriteResult(options.screenshot, picture) : code;
        });
}

ExitCode Watch(const CtlOptions& options)
{
    ChangePrinter printer(options.json);
    return CallHost(
        options,
        [&](ControlClient& client) {
            const ExitCode code = Request(client, NewRequest("watch"), [&](const QJsonObject& line) {
                printer.Print(line);
                // There is nothing else to do.
                if (printer.HasFailed())
                    client.Interrupt(0);
            });
            return printer.HasFailed() ? ExitCode::Unusable : code;
        },
        [&] { return FailNoHost(options); });
}

ExitCode Show(const CtlOptions& options)
{
    return CallHost(
        options, [](ControlClient& client) { return Request(client, NewRequest("show"), Nothing()); },
        [&] { return FailNoHost(options); });
}

ExitCode Save(const CtlOptions& options)
{
    return CallHost(
        options, [](ControlClient& client) { return Request(client, NewRequest("save"), Nothing()); }, Succeed);
}

ExitCode Quit(const CtlOptions& options)
{
    const auto quit = [&options](ControlClient& client) {
        QJsonObject request = NewRequest("quit");
        request.insert(QStringLiteral("force"), options.force);
        const ExitCode code = Request(client, request, Nothing());
        if (code != ExitCode::Done || client.WaitForEnd(options.configDirectory))
            return code;
        return Fail(ExitCode::Busy, QStringLiteral("the host does not end"));
    };
    return CallHost(options, quit, Succeed);
}

} // namespace HostCommands
