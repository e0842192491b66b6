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
    std::optional<StoredSet> set; // none: see obstacle
    Obstacle obstacle = Obstacle::None;
    Entries entries;
};

Row ReadRow(int number, const QDateTime& saved, const QString& file, const std::unique_ptr<ICfg>& node,
            Obstacle obstacle)
{
    Row row{number, saved, file, {}, obstacle, {}};
    if (node) {
        row.set = ReadStoredSet(*node);
        row.entries = StoredList::EntriesIn(*node);
    }
    return row;
}

Row CurrentRow(const ConfigVersions& versions)
{
    const QFileInfo document(versions.DocumentFile());
    Obstacle obstacle = Obstacle::None;
    const std::unique_ptr<ICfg> node = versions.OpenCurrent(&obstacle);
    return ReadRow(0, document.exists() ? document.lastModified() : QDateTime(), document.filePath(), node, obstacle);
}

Row VersionRow(const ConfigVersions& versions, int number, const ConfigVersion& version)
{
    Obstacle obstacle = Obstacle::None;
    const std::unique_ptr<ICfg> node = versions.Open(version, &obstacle);
    return ReadRow(number, version.saved, version.file, node, obstacle);
}

std::vector<Row> Rows(const ConfigVersions& versions)
{
    std::vector<Row> rows{CurrentRow(versions)};
    const QList<ConfigVersion> list = versions.List();
    for (const ConfigVersion& version : list)
        rows.push_back(VersionRow(versions, static_cast<int>(rows.size()), version));
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
            if (row.number > 0)
                Insert(version, Compare(rows.front().entries, row.entries));
        }
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

/// Within `StoredList::Look`: reads the version to restore and the stored list.
ExitCode ReadVersion(int number, Row& version, Row& current)
{
    const ConfigVersions versions(View::Application, QString());
    const QList<ConfigVersion> list = versions.List();
    if (number > list.size())
        return FailNoSuchVersion(number, list.size());
    version = VersionRow(versions, number, list.at(number - 1));
    current = CurrentRow(versions);
    if (version.set)
        return ExitCode::Done;
    return Fail(ExitCode::Unusable, version.obstacle == Obstacle::Damaged
                                        ? QStringLiteral("%1 is damaged").arg(VersionName(version))
                                        : QStringLiteral("%1 cannot be read").arg(VersionName(version)));
}

QStringList Lines(const char* label, const QStringList& names)
{
    QStringList lines;
    for (const QString& name : names)
        lines.append(QLatin1String(label) + OneLine(name));
    return lines;
}

ExitCode PrintRestored(const CtlOptions& options, const Row& version, const Row& before)
{
    const ListDifference difference = Compare(before.entries, version.entries);
    if (options.json) {
        QJsonObject object{{QStringLiteral("number"), version.number},
                           {QStringLiteral("saved"), TimeValue(version.saved)},
                           {QStringLiteral("entries"), static_cast<qint64>(version.entries.size())},
                           {QStringLiteral("entriesBefore"), static_cast<qint64>(before.entries.size())},
                           {QStringLiteral("restored"), !options.dryRun}};
        Insert(object, difference);
        return PrintResult(QJsonDocument(object).toJson());
    }
    QStringList lines{QStringLiteral("%1%2: %3 -> %4")
                          .arg(VersionName(version), QLatin1String(options.dryRun ? " would be restored" : " restored"),
                               EntriesPhrase(before), EntriesPhrase(version))};
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
            const std::vector<Row> rows = Rows(ConfigVersions(View::Application, QString()));
            return options.json ? PrintResult(Json(rows)) : PrintResult(Table(rows));
        });
}

ExitCode Restore(const CtlOptions& options)
{
    Row version;
    Row current;
    const auto read = [&] {
        return ReadVersion(options.version, version, current);
    };
    ExitCode code = StoredList::Look(options.configDirectory, read);
    if (code == ExitCode::Done && !options.dryRun) {
        code = EntryCommands::Change(
            options, "import", version.entries, [&version](const Entries&) { return version.entries; });
    }
    return code == ExitCode::Done ? PrintRestored(options, version, current) : code;
}

} // namespace Backups
