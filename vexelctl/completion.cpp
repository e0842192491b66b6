// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "vexelctl/completion.h"

#include "vexelctl/commands.h"

#include <QSet>
#include <QStringList>

namespace {

const QString kBegin = QStringLiteral(R"(# bash completion for vexelctl, generated from its commands

_vexelctl()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}
    COMPREPLY=()
    # bash takes "--config=DIR" for three words.
    if [[ $current == "=" ]]; then
        current=
    elif [[ $previous == "=" ]]; then
        previous=${COMP_WORDS[COMP_CWORD-2]}
    fi

    if ((COMP_CWORD == 1)); then
        mapfile -t COMPREPLY < <(compgen -W "%1 --help --version" -- "$current")
        return
    fi

    local options="" kind=""
    case ${COMP_WORDS[1]} in
)");

// The action of compgen is what the word before the cursor, or else the command's argument, calls for.
const QString kEnd = QStringLiteral(R"(        *) return ;;
    esac

    case $previous in
%1    *)
        if [[ $current == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
            return
        fi
        ;;
    esac

    if [[ $kind == file || $kind == directory ]]; then
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -A "$kind" -- "$current")
    fi
}

complete -F _vexelctl vexelctl
)");

QString Action(ValueKind kind)
{
    switch (kind) {
    case ValueKind::File:
        return QStringLiteral("file");
    case ValueKind::Directory:
        return QStringLiteral("directory");
    case ValueKind::None:
    case ValueKind::Text:
        break;
    }
    return QStringLiteral("none");
}

} // namespace

QString BashCompletion()
{
    QStringList names;
    QString commands;
    QString values;
    QSet<QString> known;
    for (const CommandInfo& info : AllCommands()) {
        QStringList options;
        for (const OptionInfo& option : info.options) {
            const QString name = QStringLiteral("--") + QLatin1String(option.name);
            options.append(name);
            // An option takes the same kind of value wherever it is.
            if (option.kind != ValueKind::None && !known.contains(name)) {
                known.insert(name);
                values += QStringLiteral("    %1) kind=\"%2\" ;;\n").arg(name, Action(option.kind));
            }
        }
        names.append(QLatin1String(info.name));
        commands += QStringLiteral("        %1) options=\"%2\" kind=\"%3\" ;;\n")
                        .arg(names.constLast(), options.join(QLatin1Char(' ')), Action(info.argumentKind));
    }
    return kBegin.arg(names.join(QLatin1Char(' '))) + commands + kEnd.arg(values);
}
