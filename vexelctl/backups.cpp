// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "vexelctl/backups.h"

#include "control/entryjson.h"
#include "host/output/texttable.h"
#include "host/output/timetext.h"
#include "host/store/listdifference.h"
#include "host/store/storedset.h"
#include "platform/configversions.h"
#include "platform/icfg.h"
#include "process/textline.h"
#include "vexelctl/entrycommands.h"
#include "vexelctl/output.h"
#include "vexelctl/storedlist.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <memory>
#include <optional>
#include <vector>

namespace {

using Obstacle = ConfigVersions::Obstacle;

/// One state of the document: the current one or a version.
struct Row
{
    int number = 0; // 0: the current state
    QDateTime saved;
    QString file;
    Obstacle obstacle = Obstacle::None;
    std::optional<StoredSet> set; // none: see obstacle
    std::optional<ListDifference> difference;
};

std::unique_ptr<ICfg> OpenCurrent(const ConfigVersions& versions, Row& row)
{
    const QFileInfo document(versions.DocumentFile());
    row.saved = document.exists() ? document.lastModified() : QDateTime();
    row.file = document.filePath();
    return versions.OpenCurrent(&row.obstacle);
}

std::unique_ptr<ICfg> OpenVersion(const ConfigVersions& versions, int number, const ConfigVersion& version, Row& row)
{
    row.number = number;
    row.saved = version.saved;
    row.file = version.file;
    return versions.Open(version, &row.obstacle);
}

/// Returns the entries stored in a document, which may be null.
Entries ReadContent(const std::unique_ptr<ICfg>& document, Row& row)
{
    if (!document)
        return {};
    StoredList::Content content = StoredList::ContentOf(*document);
    row.set = content.set;
    return std::move(content.entries);
}

/// Keeps the entries of two states at a time in memory.
std::vector<Row> ReadRows(const ConfigVersions& versions)
{
    std::vector<Row> rows(1);
    const Entries current = ReadContent(OpenCurrent(versions, rows.front()), rows.front());
    const QList<ConfigVersion> list = versions.List();
    for (const ConfigVersion& version : list) {
        Row row;
        const Entries entries = ReadContent(OpenVersion(versions, static_cast<int>(rows.size()), version, row), row);
        if (row.set)
            row.difference = Compare(current, entries);
        rows.push_back(row);
    }
    return rows;
}

QString EntriesText(const Row& row)
{
    const std::optional<StoredSet>& set = row.set;
    if (!set && row.obstacle == Obstacle::Missing)
        return QStringLiteral("missing");
    if (!set)
        return row.obstacle == Obstacle::Damaged ? QStringLiteral("damaged") : QStringLiteral("cannot be read");
    switch (set->state) {
    case StoredSet::State::None:
        return QStringLiteral("none stored");
    case StoredSet::State::Whole:
        return QString::number(set->entries);
    case StoredSet::State::Malformed:
        return QStringLiteral("%1, then malformed").arg(set->entries);
    }
    return {};
}

QString EntriesPhrase(qsizetype count)
{
    return count == 1 ? QStringLiteral("1 entry") : QStringLiteral("%1 entries").arg(count);
}

QString EntriesPhrase(const Row& row)
{
    return row.set && row.set->state == StoredSet::State::Whole ? EntriesPhrase(row.set->entries) : EntriesText(row);
}

QString Table(const std::vector<Row>& rows)
{
    std::vector<QStringList> lines{
        {QStringLiteral("Number"), QStringLiteral("Saved"), QStringLiteral("Entries"), QStringLiteral("File")}};
    for (const Row& row : rows) {
        lines.push_back({row.number == 0 ? QStringLiteral("now") : QString::number(row.number), TimeText(row.saved),
                         EntriesText(row), OneLine(QDir::toNativeSeparators(row.file))});
    }
    return TextTable(lines);
}

QJsonValue TimeValue(const QDateTime& time)
{
    return time.isValid() ? QJsonValue(TimeToJson(time)) : QJsonValue(QJsonValue::Null);
}

void Insert(QJsonObject& object, const ListDifference& difference)
{
    object.insert(QStringLiteral("added"), QJsonArray::fromStringList(difference.added));
    object.insert(QStringLiteral("removed"), QJsonArray::fromStringList(difference.removed));
    object.insert(QStringLiteral("changed"), QJsonArray::fromStringList(difference.changed));
}

QByteArray Json(const std::vector<Row>& rows)
{
    QJsonArray versions;
    for (const Row& row : rows) {
        QJsonObject version{{QStringLiteral("number"), row.number},
                            {QStringLiteral("file"), row.file},
                            {QStringLiteral("readable"), row.set.has_value()},
                            {QStringLiteral("damaged"), row.obstacle == Obstacle::Damaged},
                            {QStringLiteral("saved"), TimeValue(row.saved)}};
        if (row.set) {
            version.insert(QStringLiteral("entries"), row.set->entries);
            version.insert(QStringLiteral("malformed"), row.set->state == StoredSet::State::Malformed);
        }
        if (row.difference)
            Insert(version, *row.difference);
        versions.append(version);
    }
    return QJsonDocument(QJsonObject{{QStringLiteral("versions"), versions}}).toJson();
}

ExitCode FailNoSuchVersion(int number, qsizetype count)
{
    QString existing = QStringLiteral("there are none");
    if (count == 1)
        existing = QStringLiteral("there is only version 1");
    else if (count > 1)
        existing = QStringLiteral("there are versions 1 to %1").arg(count);
    return Fail(ExitCode::Usage, QStringLiteral("there is no version %1; %2").arg(QString::number(number), existing));
}

QString VersionName(const Row& version)
{
    return QStringLiteral("version %1 of %2").arg(QString::number(version.number), TimeText(version.saved));
}

/// A version to restore.
struct Restoration
{
    Row version;
    Row current;
    Entries entries;
    ListDifference difference;
};

/// Within `StoredList::Look`.
ExitCode ReadRestoration(int number, Restoration& restoration)
{
    const ConfigVersions versions(View::Application, QString());
    const QList<ConfigVersion> list = versions.List();
    if (number > list.size())
        return FailNoSuchVersion(number, list.size());
    Row& version = restoration.version;
    restoration.entries = ReadContent(OpenVersion(versions, number, list.at(number - 1), version), version);
    if (!version.set) {
        return Fail(ExitCode::Unusable, version.obstacle == Obstacle::Damaged
                                            ? QStringLiteral("%1 is damaged").arg(VersionName(version))
                                            : QStringLiteral("%1 cannot be read").arg(VersionName(version)));
    }
    const Entries current = ReadContent(OpenCurrent(versions, restoration.current), restoration.current);
    restoration.difference = Compare(current, restoration.entries);
    return ExitCode::Done;
}

QStringList Lines(const char* label, const QStringList& names)
{
    QStringList lines;
    for (const QString& name : names)
        lines.append(QLatin1String(label) + OneLine(name));
    return lines;
}

ExitCode PrintRestored(const CtlOptions& options, const Restoration& restoration)
{
    const auto& [version, current, entries, difference] = restoration;
    if (options.json) {
        QJsonObject object{{QStringLiteral("number"), version.number},
                           {QStringLiteral("saved"), TimeValue(version.saved)},
                           {QStringLiteral("entries"), version.set->entries},
                           {QStringLiteral("entriesBefore"),
                            current.set ? QJsonValue(current.set->entries) : QJsonValue(QJsonValue::Null)},
                           {QStringLiteral("restored"), !options.dryRun}};
        Insert(object, difference);
        return PrintResult(QJsonDocument(object).toJson());
    }
    QStringList lines{QStringLiteral("%1%2: %3 -> %4")
                          .arg(VersionName(version), QLatin1String(options.dryRun ? " would be restored" : " restored"),
                               EntriesPhrase(current), EntriesPhrase(version))};
    if (options.dryRun) {
        lines += Lines("  added: ", difference.added);
        lines += Lines("  removed: ", difference.removed);
        lines += Lines("  changed: ", difference.changed);
    }
    return PrintResult(lines.join(QLatin1Char('\n')) + QLatin1Char('\n'));
}

} // namespace

namespace Backups {

ExitCode Print(const CtlOptions& options)
{
    return StoredList::Look(
        options.configDirectory,
        [&options] {
            const std::vector<Row> rows = ReadRows(ConfigVersions(View::Application, QString()));
            return options.json ? PrintResult(Json(rows)) : PrintResult(Table(rows));
        });
}

ExitCode Restore(const CtlOptions& options)
{
    Restoration restoration;
    ExitCode code =
        StoredList::Look(options.configDirectory, [&] { return ReadRestoration(options.version, restoration); });
    if (code == ExitCode::Done && !options.dryRun) {
        code = EntryCommands::Change(
            options, "import", restoration.entries, [&restoration](const Entries&) { return restoration.entries; });
    }
    return code == ExitCode::Done ? PrintRestored(options, restoration) : code;
}

} // namespace Backups
