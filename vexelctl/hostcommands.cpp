// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "vexelctl/hostcommands.h"

#include "control/controlclient.h"
#include "host/output/console.h"
#include "process/standardstreams.h"
#include "vexelctl/changeprinter.h"
#include "vexelctl/hostrequest.h"
#include "vexelctl/offscreen.h"
#include "vexelctl/output.h"
#include "vexelctl/picturefile.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QTimer>

#include <chrono>
#include <functional>
#include <initializer_list>

namespace {

using namespace std::chrono_literals;
using HostState = ControlClient::State;

// Without a signal: the output is of no use any more.
constexpr auto kInterrupted = static_cast<ExitCode>(128);

/// Returns whether there is a configuration directory; prints an error if there is none. A typo must not create one.
bool HasConfiguration(const CtlOptions& options)
{
    const bool exists = QFileInfo(options.configDirectory).isDir();
    if (!exists)
        Console::PrintError(QStringLiteral("there is no configuration directory %1").arg(options.configDirectory));
    return exists;
}

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
    return HasConfiguration(options) ? withoutHost() : ExitCode::Unusable;
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

    if (!HasConfiguration(options))
        return ExitCode::Unusable;
    const auto waitWithoutAHost = [&request](const char* notice) {
        Console::PrintError(QLatin1String(notice));
        request.insert(QStringLiteral("wait"), true);
    };
    Access access;
    ExitCode code = ExitCode::Busy;
    switch (access.Get(options.configDirectory)) {
    case Access::Kind::Host:
        if (HasSessionOption(options, access.Client()))
            return ExitCode::Busy;
        if (access.Client().Greeting().value(QLatin1String("program")).toString() != QLatin1String("vexelhost"))
            waitWithoutAHost("no host runs but another vexelctl, so the applications end with that command");
        code = Request(access.Client(), request, take);
        break;
    case Access::Kind::Alone:
        waitWithoutAHost("no host runs, so the applications end with this command");
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
            // A reader that goes, as in "watch | head -1", is to be noticed before the next change, which may be far.
            QTimer check;
            QObject::connect(&check, &QTimer::timeout, &client, [&client] {
                if (StandardStreams::IsBroken(StandardStreams::Stream::Output))
                    client.Interrupt(0);
            });
            check.start(1s);
            const ExitCode code = Request(client, NewRequest("watch"), [&](const QJsonObject& line) {
                printer.Print(line);
                // There is nothing else to do.
                if (printer.HasFailed())
                    client.Interrupt(0);
            });
            return code == kInterrupted ? ExitCode::Unusable : code;
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
