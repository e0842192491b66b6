// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <vector>

/// What vexelctl can be asked to do.
enum class Command {
    List,
    Status,
    Connect,
    Wait,
    Watch,
    Export,
    Import,
    Add,
    Check,
    Backups,
    Restore,
    Diagnose,
    Screenshot,
    Show,
    Save,
    Quit,
};

/// What a value on the command line is, so that a shell can complete it.
enum class ValueKind { None, Text, File, Directory };

struct OptionInfo
{
    const char* name; ///< without the dashes
    const char* description;
    const char* value = ""; ///< the name of the value in the help; empty: the option has none
    ValueKind kind = ValueKind::None;
};

/// For files, "-" can mean standard input or output.
struct CommandInfo
{
    Command command;
    const char* name;
    const char* summary;  ///< one line, for the list of commands
    const char* notes;    ///< further sentences for the command's own help; may be empty
    const char* argument; ///< name of the positional argument; empty: there is none
    const char* argumentDescription;
    ValueKind argumentKind;
    int minArguments;
    int maxArguments;
    std::vector<OptionInfo> options; ///< the command's own and those of every command

    const OptionInfo* FindOption(const char* option) const;
};

/// Every command, in the order of the help.
const std::vector<CommandInfo>& AllCommands();
