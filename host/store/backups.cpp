#include "host/store/backups.h"

#include "host/output/console.h"
#include "host/output/texttable.h"
#include "host/output/timetext.h"
#include "host/store/storedset.h"
#include "platform/cfgcenter.h"
#include "platform/configversions.h"
#include "platform/icfg.h"
#include "platform/instancelock.h"
#include "process/textline.h"

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
};

/// Reads the set stored in the document with the root node `node`.
std::optional<StoredSet> ReadSet(const std::unique_ptr<ICfg>& node)
{
    return node ? std::optional(ReadStoredSet(*node)) : std::nullopt;
}

std::vector<Row> Rows(const ConfigVersions& versions)
{
    const QFileInfo document(versions.DocumentFile());
    Row now{0, document.exists() ? document.lastModified() : QDateTime(), document.filePath(), {}, {}};
    now.set = ReadSet(versions.OpenCurrent(&now.obstacle));
    std::vector<Row> rows{now};
    const QList<ConfigVersion> list = versions.List();
    for (const ConfigVersion& version : list) {
        Row row{static_cast<int>(rows.size()), version.saved, version.file, {}, {}};
        row.set = ReadSet(versions.Open(version, &row.obstacle));
        rows.push_back(row);
    }
    return rows;
}

QString EntriesText(const std::optional<StoredSet>& set, Obstacle obstacle)
{
    if (!set && obstacle == Obstacle::Missing)
        return QStringLiteral("missing");
    if (!set)
        return obstacle == Obstacle::Damaged ? QStringLiteral("damaged") : QStringLiteral("cannot be read");
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

QString EntriesPhrase(const std::optional<StoredSet>& set, Obstacle obstacle)
{
    if (set && set->state == StoredSet::State::Whole && set->entries == 1)
        return QStringLiteral("1 entry");
    return set && set->state == StoredSet::State::Whole ? QStringLiteral("%1 entries").arg(set->entries)
                                                        : EntriesText(set, obstacle);
}

QString Table(const std::vector<Row>& rows)
{
    std::vector<QStringList> lines{
        {QStringLiteral("Number"), QStringLiteral("Saved"), QStringLiteral("Entries"), QStringLiteral("File")}};
    for (const Row& row : rows) {
        lines.push_back({row.number == 0 ? QStringLiteral("now") : QString::number(row.number), TimeText(row.saved),
                         EntriesText(row.set, row.obstacle), OneLine(QDir::toNativeSeparators(row.file))});
    }
    return TextTable(lines);
}

QByteArray Json(const std::vector<Row>& rows)
{
    QJsonArray versions;
    for (const Row& row : rows) {
        QJsonObject version{{QStringLiteral("number"), row.number},
                            {QStringLiteral("file"), row.file},
                            {QStringLiteral("readable"), row.set.has_value()},
                            {QStringLiteral("damaged"), row.obstacle == Obstacle::Damaged}};
        version.insert(QStringLiteral("saved"), row.saved.isValid() ? QJsonValue(row.saved.toString(Qt::ISODateWithMs))
                                                                    : QJsonValue(QJsonValue::Null));
        if (row.set) {
            version.insert(QStringLiteral("entries"), row.set->entries);
            version.insert(QStringLiteral("malformed"), row.set->state == StoredSet::State::Malformed);
        }
        versions.append(version);
    }
    return QJsonDocument(QJsonObject{{QStringLiteral("versions"), versions}}).toJson();
}

ExitCode Fail(ExitCode code, const QString& message)
{
    Console::PrintError(message);
    return code;
}

ExitCode PrintCannotUse(const QString& directory)
{
    return Fail(
        ExitCode::Unusable,
        QStringLiteral("the configuration directory %1 cannot be used: %2").arg(directory, CfgCenter::OpenError()));
}

ExitCode PrintNoDirectory(const QString& directory)
{
    return Fail(ExitCode::Unusable, QStringLiteral("there is no configuration directory %1").arg(directory));
}

ExitCode PrintNoSuchVersion(int number, qsizetype count)
{
    QString existing = QStringLiteral("there are none");
    if (count == 1)
        existing = QStringLiteral("there is only version 1");
    else if (count > 1)
        existing = QStringLiteral("there are versions 1 to %1").arg(count);
    return Fail(ExitCode::Usage, QStringLiteral("there is no version %1; %2").arg(QString::number(number), existing));
}

ExitCode RestoreVersion(const ConfigVersions& versions, int number)
{
    const QList<ConfigVersion> before = versions.List();
    if (number > before.size())
        return PrintNoSuchVersion(number, before.size());

    const ConfigVersion& wanted = before.at(number - 1);
    const QString name = QStringLiteral("version %1 of %2").arg(QString::number(number), TimeText(wanted.saved));
    Obstacle obstacle = Obstacle::None;
    const std::optional<StoredSet> set = ReadSet(versions.Open(wanted, &obstacle));
    if (!set) {
        return Fail(ExitCode::Unusable, obstacle == Obstacle::Damaged ? QStringLiteral("%1 is damaged").arg(name)
                                                                      : QStringLiteral("%1 cannot be read").arg(name));
    }
    const std::optional<StoredSet> present = ReadSet(versions.OpenCurrent(&obstacle));
    QString quarantined;
    if (!versions.Restore(wanted, &quarantined))
        return Fail(ExitCode::Unusable,
                    QStringLiteral("%1 could not be restored (use --trace for the reason)").arg(name));

    const QList<ConfigVersion> after = versions.List();
    QString replaced;
    if (!quarantined.isEmpty())
        replaced = QStringLiteral("; the replaced file is kept as %1").arg(QDir::toNativeSeparators(quarantined));
    else if (!after.isEmpty() && after.constFirst().file != before.constFirst().file)
        replaced = QStringLiteral("; the replaced state is now version 1");
    Console::Print(QStringLiteral("%1 restored: %2 -> %3%4")
                       .arg(name, EntriesPhrase(present, obstacle), EntriesPhrase(set, Obstacle::None), replaced));
    return ExitCode::Done;
}

} // namespace

namespace Backups {

ExitCode Print(const HostOptions& options)
{
    // Listing versions must not create a configuration.
    if (!CfgCenter::OpenReadOnly(options.configDirectory))
        return PrintNoDirectory(options.configDirectory);
    const std::vector<Row> rows = Rows(ConfigVersions(View::Application, QString()));
    CfgCenter::Close();
    const bool isPrinted = options.json ? Console::PrintBytes(Json(rows)) : Console::PrintRaw(Table(rows));
    return isPrinted ? ExitCode::Done : ExitCode::Usage;
}

ExitCode Restore(const HostOptions& options)
{
    if (!QFileInfo(options.configDirectory).isDir())
        return PrintNoDirectory(options.configDirectory);
    // A running host would overwrite the restored version with its next save.
    InstanceLock lock;
    if (const InstanceLock::Result taken = lock.TryLock(options.configDirectory); taken != InstanceLock::Result::Locked)
        return Fail(taken == InstanceLock::Result::Busy ? ExitCode::Running : ExitCode::Unusable, lock.ErrorText());
    if (!CfgCenter::Open(options.configDirectory))
        return PrintCannotUse(options.configDirectory);
    const ExitCode result = RestoreVersion(ConfigVersions(View::Application, QString()), options.versionToRestore);
    CfgCenter::Close();
    return result;
}

} // namespace Backups
