// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "vexelctl/commands.h"

#include <algorithm>
#include <limits>
#include <string_view>

namespace {

using Options = std::vector<OptionInfo>;

constexpr int kAnyNumber = std::numeric_limits<int>::max();

constexpr OptionInfo kHelp{"help", "Print this help."};
constexpr OptionInfo kConfig{"config", "Use the configuration in DIR. Default: this user's configuration folder.",
                             "DIR", ValueKind::Directory};
constexpr OptionInfo kLanguage{
    "language",
    R"(Language of the texts of entries, such as "de" or "de_AT". Default: that of a settings file, else the system's.)",
    "LOCALE", ValueKind::Text};
constexpr OptionInfo kTrace{"trace", "Write trace lines to standard error."};
constexpr OptionInfo kTraceFile{
    "trace-file",
    "Append trace lines to FILE. At 10 MiB it is renamed to FILE.1, FILE.1 to FILE.2, and so on up to FILE.5.", "FILE",
    ValueKind::File};

constexpr OptionInfo kJson{"json", "Print one JSON document."};
constexpr OptionInfo kJsonLines{"json", "Print one JSON object per line."};
constexpr OptionInfo kSelected{"selected", "Connect the ticked entries."};
constexpr OptionInfo kWait{"wait",
                           "With a host: wait until the connected entries are free again, and print each change "
                           "of their status. Without a host, connect always does so."};
constexpr OptionInfo kIgnoreExitCodes{"ignore-exit-codes",
                                      "Return 0 also if an application ends by a crash or with another code than 0."};
constexpr OptionInfo kScreenshotDuring{
    "screenshot-during", "Write a screenshot of the dialog to FILE (PNG) after connecting.", "FILE", ValueKind::File};
constexpr OptionInfo kScreenshot{"screenshot", "Write a screenshot of the dialog to FILE (PNG) at the end.", "FILE",
                                 ValueKind::File};
constexpr OptionInfo kPlugin{"plugin", "Load the plug-in from FILE. Default: the installed one.", "FILE",
                             ValueKind::File};
constexpr OptionInfo kName{"name", "Name of the plug-in's instance and of its configuration. Default: VexelConnectDlg.",
                           "NAME", ValueKind::Text};
constexpr OptionInfo kStoredData{
    "data",
    "Read CfgVEXEL.xml and TypeApplicationMappings.xml, which list the applications, from DIR, and store DIR in the "
    "configuration. Default: the stored one, else one of a settings file, else the installed samples.",
    "DIR", ValueKind::Directory};
constexpr OptionInfo kReadData{"data",
                               "Read CfgVEXEL.xml and TypeApplicationMappings.xml from DIR, without storing DIR.",
                               "DIR", ValueKind::Directory};
constexpr OptionInfo kForceData{"force", "With --data: use DIR even if it has no CfgVEXEL.xml."};
constexpr OptionInfo kForceQuit{"force", "End the host and its applications even if entries are in use."};
constexpr OptionInfo kDryRun{"dry-run", "Only print what the restored list differs in. Changes nothing."};

/// `own` and the options of every command.
Options With(Options own)
{
    own.insert(own.end(), {kConfig, kLanguage, kTrace, kTraceFile, kHelp});
    return own;
}

CommandInfo Plain(Command command, const char* name, const char* summary, const char* notes, Options own)
{
    return {command, name, summary, notes, "", "", ValueKind::None, 0, 0, With(std::move(own))};
}

std::vector<CommandInfo> MakeCommands()
{
    return {
        Plain(Command::List, "list", "Print the entries as a table.",
              "With a host: also since when an entry is in use, and by which program and process.", {kJson}),
        Plain(Command::Status, "status", "Print whether a host runs, and how many entries are in use.", "", {kJson}),
        {Command::Connect, "connect", "Connect entries.",
         "The ticks do not change. If any NAME is unknown, nothing is connected. Without a host, the applications end "
         "with this command, and it waits until they have ended.",
         "NAME",
         "Name of an entry. Entries with this name are connected, ticked or not. A name that begins with a dash "
         "follows \"--\".",
         ValueKind::Text, 0, kAnyNumber,
         With({kSelected, kWait, kIgnoreExitCodes, kScreenshotDuring, kScreenshot, kJsonLines, kPlugin, kStoredData,
               kForceData, kName})},
        Plain(
            Command::Wait, "wait", "Wait until no entry is in use.",
            "Prints each change of status as a line \"TIME NAME: Free -> In Use\". Without a host, no entry is in use.",
            {kIgnoreExitCodes, kScreenshot, kJsonLines}),
        Plain(Command::Watch, "watch", "Print each change of status until interrupted.",
              "Needs a running host, and ends when that ends.", {kJsonLines}),
        {Command::Export, "export", "Write all entries to a connection list (XML).", "", "FILE",
         "The file to write. \"-\": standard output.", ValueKind::File, 1, 1, With({})},
        {Command::Import, "import", "Replace all entries by those of a connection list (XML).",
         "If the file cannot be used, nothing changes. A file without entries is an error.", "FILE",
         "The file to read. \"-\": standard input.", ValueKind::File, 1, 1, With({kStoredData, kForceData})},
        {Command::Add, "add", "Append the entries of connection lists (XML).",
         "If any of the files cannot be used, nothing changes. A file without entries is an error.", "FILE",
         "A file to read. \"-\": standard input.", ValueKind::File, 1, kAnyNumber, With({kStoredData, kForceData})},
        {Command::Check, "check", "Check whether a file is a connection list, and print its entries.",
         "Needs no configuration. Of a file that is not a list, it prints the row and column of the error.", "FILE",
         "The file to read. \"-\": standard input.", ValueKind::File, 1, 1, With({kJson})},
        Plain(Command::Backups, "backups", "Print the versions of the stored list, newest first.",
              "Every save that changes the stored list keeps the previous version: the last ten, and the last one of "
              "each of thirty days. With --json also the names of the entries that each version differs in from the "
              "present list.",
              {kJson}),
        {Command::Restore, "restore", "Replace all entries by those of a version (see backups).",
         "The present list becomes version 1.", "N", "Number of the version; 1 is the newest.", ValueKind::Text, 1, 1,
         With({kDryRun, kJson})},
        Plain(Command::Diagnose, "diagnose", "Print a report for a support desk.",
              "Versions, paths, settings and which file has set each, the desktop, what was read from the data "
              "directory and what was ignored, the state of the configuration and who can access it, what crashes "
              "have left, the state of the starter's port. Returns 0 whatever it finds.",
              {kJson, kPlugin, kReadData, kName}),
        {Command::Screenshot, "screenshot", "Write a screenshot of the dialog (PNG).", "", "FILE",
         "The file to write. \"-\": standard output.", ValueKind::File, 1, 1, With({kPlugin, kReadData, kName})},
        Plain(Command::Show, "show", "Bring the running host's dialog to the front.", "", {}),
        Plain(Command::Save, "save", "Have the running host save its list.", "", {}),
        Plain(Command::Quit, "quit", "End the running host.",
              "Refused while entries are in use. Returns when the host has ended; without a host at once.",
              {kForceQuit}),
    };
}

} // namespace

const OptionInfo* CommandInfo::FindOption(const char* option) const
{
    const auto found = std::find_if(options.begin(), options.end(),
                                    [option](const OptionInfo& info) { return std::string_view(info.name) == option; });
    return found == options.end() ? nullptr : &*found;
}

const std::vector<CommandInfo>& AllCommands()
{
    static const std::vector<CommandInfo> commands = MakeCommands();
    return commands;
}
