// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "vexelctl/entrytable.h"

#include "control/entryjson.h"
#include "host/output/texttable.h"
#include "host/output/timetext.h"
#include "process/textline.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <algorithm>

namespace {

constexpr int kMaxColumnWidth = 60;
// Texts are cut to this length before escaping: a name may be a megabyte long.
constexpr qsizetype kMaxReadLength = 240;

/// A text of the dialog's list, in the user's language.
QString ListText(const char* text)
{
    return QCoreApplication::translate("ConnectionsModel", text);
}

QString Short(const QString& text)
{
    return Elided(OneLine(text.left(kMaxReadLength)), kMaxColumnWidth);
}

QStringList Heading()
{
    return {ListText("Name"),           ListText("Status"),
            ListText("Device Type"),    ListText("Connection Type"),
            ListText("Device Address"), ListText("Driver Address"),
            ListText("Link Speed"),     ListText("Timeout Time"),
            ListText("Subsystem"),      QCoreApplication::translate("EntryTable", "Selected")};
}

QStringList Cells(const Connection& entry)
{
    return {Short(entry.ConnectionName),
            Connection::StatusName(entry.ConnectionStatus),
            Connection::DeviceTypeName(entry.DeviceType),
            Connection::ConnectionTypeName(entry.ConnectionType),
            Short(entry.DeviceAddress),
            Short(entry.DriverAddress),
            Connection::LinkSpeedName(entry.LinkSpeed),
            entry.TimeoutSeconds > 0 ? QString::number(entry.TimeoutSeconds) : ListText("No Timeout"),
            Short(entry.Subsystem),
            entry.Selected ? QCoreApplication::translate("EntryTable", "yes")
                           : QCoreApplication::translate("EntryTable", "no")};
}

QStringList UseCells(const std::optional<EntryApplication>& application)
{
    if (!application)
        return {QString(), QString(), QString()};
    return {TimeText(application->since.toLocalTime()), Short(ProgramName(application->program)),
            QString::number(application->process)};
}

} // namespace

QString EntryTable(const std::vector<ListedEntry>& entries)
{
    const bool isAnyUsed = std::any_of(entries.begin(), entries.end(),
                                       [](const ListedEntry& entry) { return entry.application.has_value(); });
    std::vector<QStringList> lines{Heading()};
    if (isAnyUsed)
        lines.front() +=
            {QCoreApplication::translate("EntryTable", "Since"), QCoreApplication::translate("EntryTable", "Program"),
             QCoreApplication::translate("EntryTable", "Process")};
    for (const ListedEntry& listed : entries) {
        lines.push_back(Cells(listed.entry));
        if (isAnyUsed)
            lines.back() += UseCells(listed.application);
    }
    return TextTable(lines);
}

QByteArray EntryJson(const std::vector<ListedEntry>& entries)
{
    QJsonArray connections;
    for (const ListedEntry& listed : entries)
        connections.append(EntryToJson(listed.entry, listed.application));
    return QJsonDocument(QJsonObject{{QStringLiteral("connections"), connections}}).toJson();
}

QString ProgramName(const QString& file)
{
    const QString suffix = QStringLiteral(".exe");
    const QString name = QFileInfo(file).fileName();
    return name.endsWith(suffix, Qt::CaseInsensitive) ? name.chopped(suffix.size()) : name;
}
