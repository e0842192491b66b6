// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "vexelctl/support/storereport.h"

#include "control/entryjson.h"
#include "host/output/timetext.h"
#include "host/store/storedset.h"
#include "platform/configversions.h"
#include "platform/icfg.h"
#include "platform/instancelock.h"
#include "vexelctl/support/supportreport.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QStorageInfo>

#include <algorithm>
#include <optional>
#include <utility>

namespace {

const QString kSuffix = QStringLiteral(".json");

/// Returns the store's document in the file `path`, relative to the store; none if it is not one.
std::optional<ConfigVersions> DocumentIn(const QString& directory, const QString& path)
{
    static const QList<std::pair<QString, View>> kViews = {{QStringLiteral("user/"), View::User},
                                                           {QStringLiteral("application/"), View::Application},
                                                           {QStringLiteral("shared/"), View::Shared}};
    for (const auto& [folder, view] : kViews) {
        if (!path.startsWith(folder) || !path.endsWith(kSuffix))
            continue;
        const QString encoded = path.mid(folder.size()).chopped(kSuffix.size());
        // The application's own document has an empty name; all other file names are percent-encoded.
        for (const QString& name : {QString(), QString::fromUtf8(QByteArray::fromPercentEncoding(encoded.toUtf8()))}) {
            const ConfigVersions document(view, name);
            if (document.DocumentFile() == directory + QLatin1Char('/') + path)
                return document;
        }
    }
    return std::nullopt;
}

QString StateText(const ConfigVersions& document)
{
    ConfigVersions::Obstacle obstacle{};
    if (document.OpenCurrent(&obstacle))
        return QStringLiteral("readable");
    const std::optional<ConfigVersion> readable = document.NewestReadable();
    const QString from = readable ? TimeText(readable->saved) : QString();
    if (obstacle == ConfigVersions::Obstacle::Unavailable)
        return QStringLiteral("CANNOT BE FOUND OR OPENED now, and a start refuses to work without it");
    if (obstacle == ConfigVersions::Obstacle::Missing) {
        return readable ? QStringLiteral("MISSING; the next start uses the version of %1").arg(from)
                        : QStringLiteral("MISSING, and no version can be read");
    }
    if (obstacle == ConfigVersions::Obstacle::Unread) {
        // The user who starts the host may have more rights than this one.
        return readable
                   ? QStringLiteral("CANNOT BE READ now; if the next start cannot either, it uses the version of %1")
                         .arg(from)
                   : QStringLiteral("CANNOT BE READ now, and no version can be read");
    }
    return readable ? QStringLiteral("DAMAGED; the next start uses the version of %1").arg(from)
                    : QStringLiteral("DAMAGED, and no version can be read");
}

QJsonArray DocumentRow(const QString& directory, const QString& path, const QFileInfo& file)
{
    const std::optional<ConfigVersions> document = DocumentIn(directory, path);
    const QList<ConfigVersion> versions = document ? document->List() : QList<ConfigVersion>();
    return {path,
            file.size(),
            TimeToJson(file.lastModified()),
            document ? StateText(*document) : QStringLiteral("not a document of the store"),
            versions.size(),
            versions.isEmpty() ? QJsonValue() : QJsonValue(TimeToJson(versions.constFirst().saved))};
}

QString HostText(const InstanceLock::Owner& owner)
{
    switch (owner.state) {
    case InstanceLock::State::Nobody:
        break;
    case InstanceLock::State::Somebody:
        return owner.process == 0 ? QStringLiteral("yes, process unknown")
                                  : QStringLiteral("process %1").arg(owner.process);
    case InstanceLock::State::Unknown:
        return QStringLiteral("unknown: its lock cannot be checked");
    }
    return QStringLiteral("none");
}

void ReportStoredList(SupportReport& report)
{
    const std::unique_ptr<ICfg> document = OpenNewestReadable(View::Application, QString());
    const StoredSet set = document ? ReadStoredSet(*document) : StoredSet();
    QString state = QStringLiteral("valid");
    if (set.state == StoredSet::State::None)
        state = QStringLiteral("nothing stored");
    else if (set.state == StoredSet::State::Malformed)
        state = QStringLiteral("MALFORMED; the next start keeps a copy and loads the entries before the error");
    const ConfigVersions current(View::Application, QString());
    if (!current.OpenCurrent())
        state = QStringLiteral("its document: %1").arg(StateText(current));
    report.AddFact(QStringLiteral("stored list"), state);
    report.AddFact(QStringLiteral("entries stored"), set.entries);
}

void ReportFiles(SupportReport& report, const QString& directory)
{
    QList<QJsonArray> documents;
    QStringList quarantined;
    QDirIterator files(directory, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = QDir(directory).relativeFilePath(files.next());
        if (path.contains(QLatin1String(".versions/")))
            continue;
        if (path.contains(QLatin1String(".json.damaged-")) || path.contains(QLatin1String(".json.malformed-")))
            quarantined.append(path);
        else if (path.endsWith(kSuffix))
            documents.append(DocumentRow(directory, path, files.fileInfo()));
    }
    std::sort(documents.begin(), documents.end(), [](const QJsonArray& one, const QJsonArray& other) {
        return one.at(0).toString() < other.at(0).toString();
    });
    quarantined.sort();
    report.AddTable(QStringLiteral("documents"),
                    {QStringLiteral("File"), QStringLiteral("Bytes"), QStringLiteral("Changed"),
                     QStringLiteral("State"), QStringLiteral("Versions"), QStringLiteral("Newest version")},
                    documents);
    report.AddList(QStringLiteral("quarantined"), quarantined);
}

} // namespace

std::unique_ptr<ICfg> OpenNewestReadable(View view, const QString& name)
{
    const ConfigVersions document(view, name);
    if (std::unique_ptr<ICfg> current = document.OpenCurrent())
        return current;
    const std::optional<ConfigVersion> readable = document.NewestReadable();
    return readable ? document.Open(*readable) : nullptr;
}

void ReportStore(SupportReport& report, const QString& directory)
{
    report.BeginSection(QStringLiteral("Configuration"));
    const bool exists = QFileInfo(directory).isDir();
    report.AddFact(QStringLiteral("directory"), directory);
    report.AddFact(QStringLiteral("exists"), exists);
    if (!exists)
        return;
    // A file that is created for this would be a change.
    report.AddFact(QStringLiteral("can be written"), QFileInfo(directory).isWritable());
    report.AddFact(QStringLiteral("free space"), QStorageInfo(directory).bytesAvailable());
    report.AddFact(QStringLiteral("host at work"), HostText(InstanceLock::Query(directory)));
    ReportStoredList(report);
    ReportFiles(report, directory);
}
