// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "process/windowscommandline.h"

#include <algorithm>

namespace {

bool NeedsQuotes(const QString& argument)
{
    const auto separates = [](QChar unit) {
        return unit.isSpace() || unit == u'"';
    };
    return argument.isEmpty() || std::any_of(argument.cbegin(), argument.cend(), separates);
}

QString Quoted(const QString& argument)
{
    QString text = QStringLiteral("\"");
    qsizetype backslashes = 0;
    for (const QChar unit : argument) {
        if (unit == u'"')
            text += QString(backslashes + 1, u'\\');
        backslashes = unit == u'\\' ? backslashes + 1 : 0;
        text += unit;
    }
    return text + QString(backslashes, u'\\') + u'"';
}

} // namespace

QString WindowsCommandLine(const QStringList& arguments)
{
    QStringList texts;
    for (const QString& argument : arguments)
        texts.append(NeedsQuotes(argument) ? Quoted(argument) : argument);
    return texts.join(u' ');
}
