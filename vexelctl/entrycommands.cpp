// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "vexelctl/entrycommands.h"

#include "control/controlclient.h"
#include "control/entryjson.h"
#include "host/output/console.h"
#include "host/output/texttable.h"
#include "host/output/timetext.h"
#include "process/textline.h"
#include "vexelctl/hostrequest.h"
#include "vexelctl/listfiles.h"
#include "vexelctl/output.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

using HostState = ControlClient::State;

ListedEntry ToListed(const QJsonObject& line)
{
    return {EntryFromJson(line), ApplicationFromJson(line)};
}

std::vector<ListedEntry> ToListed(const Entries& entries)
{
    std::vector<ListedEntry> listed;
    listed.reserve(entries.size());
    for (const Connection& entry : entries)
        listed.push_back({entry, {}});
    return listed;
}

ExitCode PrintEntries(const CtlOptions& options, const std::vector<ListedEntry>& entries)
{
    return options.json ? PrintResult(EntryJson(entries)) : PrintResult(EntryTable(entries));
}

struct HostStatus
{
    QJsonObject greeting; // empty: no host runs
    bool isHidden = false;
    qint64 entries = 0;
    std::vector<ListedEntry> inUse;
};

QByteArray StatusJson(const HostStatus& status)
{
    QJsonArray inUse;
    for (const ListedEntry& listed : status.inUse)
        inUse.append(EntryToJson(listed.entry, listed.application));
    QJsonObject object{{QStringLiteral("running"), !status.greeting.isEmpty()},
                       {QStringLiteral("entries"), status.entries},
                       {QStringLiteral("inUse"), inUse}};
    if (!status.greeting.isEmpty()) {
        for (const QString& key : {QStringLiteral("program"), QStringLiteral("version"), QStringLiteral("process")})
            object.insert(key, status.greeting.value(key));
        object.insert(QStringLiteral("hidden"), status.isHidden);
    }
    return QJsonDocument(object).toJson();
}

QString HostText(const HostStatus& status)
{
    if (status.greeting.isEmpty())
        return QStringLiteral("not running");
    return QStringLiteral("%1 %2, process %3, the dialog is %4")
        .arg(status.greeting.value(QLatin1String("program")).toString(),
             status.greeting.value(QLatin1String("version")).toString(),
             QString::number(status.greeting.value(QLatin1String("process")).toInteger()),
             status.isHidden ? QStringLiteral("hidden") : QStringLiteral("shown"));
}

QString UseText(const ListedEntry& listed)
{
    const QString name = OneLine(listed.entry.ConnectionName);
    if (!listed.application)
        return name;
    return QStringLiteral("%1 (%2, process %3, since %4)")
        .arg(name, OneLine(ProgramName(listed.application->program)), QString::number(listed.application->process),
             TimeText(listed.application->since.toLocalTime()));
}

QString StatusText(const HostStatus& status)
{
    std::vector<QStringList> lines{{QStringLiteral("Host"), HostText(status)},
                                   {QStringLiteral("Entries"), QString::number(status.entries)},
                                   {QStringLiteral("In use"), QString::number(status.inUse.size())}};
    for (const ListedEntry& listed : status.inUse)
        lines.push_back({QString(), UseText(listed)});
    return TextTable(lines);
}

bool FitsIntoList(const Entries& list)
{
    qint64 size = 0;
    for (const Connection& entry : list)
        size += ConnectionList::WrittenSize(entry);
    return list.size() <= ConnectionList::kMaximumEntries && size <= ConnectionList::kMaximumSize;
}

ExitCode RequestChange(ControlClient& client, const char* command, const Entries& entries)
{
    QJsonObject request = NewRequest(command);
    QByteArray document;
    // A version may be empty.
    if (entries.empty())
        request.insert(QStringLiteral("clear"), true);
    else
        document = ToDocument(entries);
    return Request(
        client, request, [](const QJsonObject&) {}, document);
}

} // namespace

namespace EntryCommands {

ExitCode GetEntries(const CtlOptions& options, std::vector<ListedEntry>& entries)
{
    ControlClient client;
    switch (client.Connect(options.configDirectory)) {
    case HostState::Connected:
        return Request(client, NewRequest("list"),
                       [&entries](const QJsonObject& line) { entries.push_back(ToListed(line)); });
    case HostState::Failed:
        return FailConnect(client);
    case HostState::NoHost:
        break;
    }
    return StoredList::Look(options.configDirectory, [&entries] {
        const std::optional<Entries> stored = StoredList::Read();
        if (!stored)
            return ExitCode::Unusable;
        entries = ToListed(*stored);
        return ExitCode::Done;
    });
}

ExitCode List(const CtlOptions& options)
{
    std::vector<ListedEntry> entries;
    const ExitCode code = GetEntries(options, entries);
    return code == ExitCode::Done ? PrintEntries(options, entries) : code;
}

ExitCode Status(const CtlOptions& options)
{
    HostStatus status;
    ControlClient client;
    ExitCode code = ExitCode::Done;
    switch (client.Connect(options.configDirectory)) {
    case HostState::Connected:
        status.greeting = client.Greeting();
        code = Request(client, NewRequest("status"), [&status](const QJsonObject& line) {
            if (TypeOf(line) == QLatin1String("entry")) {
                status.inUse.push_back(ToListed(line));
                return;
            }
            status.isHidden = line.value(QLatin1String("hidden")).toBool();
            status.entries = line.value(QLatin1String("entries")).toInteger();
        });
        break;
    case HostState::Failed:
        return FailConnect(client);
    case HostState::NoHost:
        code = StoredList::Look(options.configDirectory, [&status] {
            const std::optional<Entries> stored = StoredList::Read();
            status.entries = stored ? static_cast<qint64>(stored->size()) : 0;
            return stored ? ExitCode::Done : ExitCode::Unusable;
        });
        break;
    }
    if (code != ExitCode::Done)
        return code;
    return options.json ? PrintResult(StatusJson(status)) : PrintResult(StatusText(status));
}

ExitCode Export(const CtlOptions& options)
{
    const QString file = options.files.constFirst();
    if (file != CtlOptions::kStandardStream) {
        if (const QString obstacle = WritingObstacle(file); !obstacle.isEmpty())
            return Fail(ExitCode::Unusable, QStringLiteral("cannot write %1: %2").arg(file, obstacle));
    }
    QByteArray document;
    ControlClient client;
    ExitCode code = ExitCode::Done;
    switch (client.Connect(options.configDirectory)) {
    case HostState::Connected:
        code = Request(client, NewRequest("export"), [&document](const QJsonObject& line) {
            document += line.value(QLatin1String("text")).toString().toUtf8();
        });
        if (code == ExitCode::Done && document.isEmpty())
            return Fail(ExitCode::Busy, QStringLiteral("the running host has sent nothing"));
        break;
    case HostState::Failed:
        return FailConnect(client);
    case HostState::NoHost:
        code = StoredList::Look(options.configDirectory, [&document] {
            const std::optional<Entries> stored = StoredList::Read();
            if (!stored)
                return ExitCode::Unusable;
            document = ToDocument(*stored);
            return ExitCode::Done;
        });
        break;
    }
    return code == ExitCode::Done ? WriteResult(file, document) : code;
}

ExitCode Change(const CtlOptions& options, const char* command, const Entries& entries,
                const StoredList::Change& change)
{
    Access access;
    switch (access.Get(options.configDirectory)) {
    case Access::Kind::Host:
        if (HasSessionOption(options, access.Client()))
            return ExitCode::Busy;
        return RequestChange(access.Client(), command, entries);
    case Access::Kind::Alone:
        return StoredList::Edit(options.configDirectory, options.dataDirectory, change);
    case Access::Kind::None:
        break;
    }
    return access.Error();
}

ExitCode Import(const CtlOptions& options)
{
    ListFileError error;
    const std::optional<Entries> entries = ReadListFiles(options.files, error);
    if (!entries)
        return Fail(ExitCode::Unusable, error.Sentence());
    return Change(options, "import", *entries, [&entries](const Entries&) { return entries; });
}

ExitCode Add(const CtlOptions& options)
{
    ListFileError error;
    const std::optional<Entries> added = ReadListFiles(options.files, error);
    if (!added)
        return Fail(ExitCode::Unusable, error.Sentence());
    return Change(options, "add", *added, [&added](Entries list) -> std::optional<Entries> {
        list.insert(list.end(), added->begin(), added->end());
        if (FitsIntoList(list))
            return list;
        Console::PrintError(QStringLiteral("nothing is added: the list would have too many entries, or be too large"));
        return std::nullopt;
    });
}

ExitCode Check(const CtlOptions& options)
{
    ListFileError error;
    if (const std::optional<Entries> entries = ReadListFiles(options.files, error))
        return PrintEntries(options, ToListed(*entries));
    Console::PrintError(error.Sentence());
    if (!options.json)
        return ExitCode::Unusable;
    QJsonObject object{{QStringLiteral("text"), error.obstacle.isEmpty() ? error.error.text : error.obstacle}};
    if (error.error.row > 0) {
        object.insert(QStringLiteral("row"), error.error.row);
        object.insert(QStringLiteral("column"), error.error.column);
    }
    // The exit code is the same if this cannot be printed.
    (void)PrintResult(QJsonDocument(QJsonObject{{QStringLiteral("error"), object}}).toJson());
    return ExitCode::Unusable;
}

} // namespace EntryCommands
