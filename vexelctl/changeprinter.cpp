// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "vexelctl/changeprinter.h"

#include "control/controlline.h"
#include "control/entryjson.h"
#include "host/output/console.h"
#include "process/textline.h"
#include "vexelctl/entrytable.h"
#include "vexelctl/hostrequest.h"

#include <QCoreApplication>
#include <QStringList>

namespace {

/// "(kitecontrol, process 4712)" of an application that has started, "(exit code 0)" of one that has ended; empty if it
/// is not known.
QString ApplicationText(const QJsonObject& line)
{
    const std::optional<EntryApplication> application = ApplicationFromJson(line);
    if (!application)
        return {};
    QString text;
    if (application->exitCode) {
        text = QCoreApplication::translate("ChangePrinter", "exit code %1").arg(*application->exitCode);
    } else if (application->signal) {
        text = QCoreApplication::translate("ChangePrinter", "signal %1").arg(*application->signal);
    } else if (application->isCrash) {
        text = QCoreApplication::translate("ChangePrinter", "crashed");
    } else {
        text = QCoreApplication::translate("ChangePrinter", "%1, process %2")
                   .arg(OneLine(ProgramName(application->program)), QString::number(application->process));
    }
    return QStringLiteral(" (") + text + QStringLiteral(")");
}

QString ChangeText(const QJsonObject& line)
{
    const QString time = line.value(QLatin1String("time")).toString();
    if (TypeOf(line) == QLatin1String("entries")) {
        const qint64 count = line.value(QLatin1String("count")).toInteger();
        return time + QLatin1Char(' ') +
               (count == 1 ? QCoreApplication::translate("ChangePrinter", "1 entry")
                           : QCoreApplication::translate("ChangePrinter", "%1 entries").arg(count));
    }
    // The name may contain what arg() replaces.
    return QStringList{time,
                       QStringLiteral(" "),
                       OneLine(line.value(QLatin1String("name")).toString()),
                       QStringLiteral(": "),
                       Connection::StatusName(line.value(QLatin1String("from")).toInt()),
                       QStringLiteral(" -> "),
                       Connection::StatusName(line.value(QLatin1String("to")).toInt()),
                       ApplicationText(line)}
        .join(QString());
}

} // namespace

ChangePrinter::ChangePrinter(bool json)
    : m_json(json)
{
}

void ChangePrinter::Print(const QJsonObject& line)
{
    const QString type = TypeOf(line);
    if (m_hasFailed || (type != QLatin1String("status") && type != QLatin1String("entries")))
        return;
    m_hasFailed = m_json ? !Console::PrintBytes(ControlLine::Write(line))
                         : !Console::PrintRaw(ChangeText(line) + QLatin1Char('\n'));
}
