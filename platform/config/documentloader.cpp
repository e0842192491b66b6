#include "platform/config/documentloader.h"

#include "platform/config/documenttransaction.h"
#include "platform/config/versionfolder.h"
#include "platform/tracing.h"

#include <QFile>

#include <utility>

namespace {

QString Notice(const QString& file, const DocumentReading& found, DocumentAccess access,
               const std::optional<QString>& quarantined, const std::optional<ReadableVersion>& version)
{
    const QString what = found.state == DocumentReading::State::Damaged
                             ? QStringLiteral("%1 is damaged (%2)").arg(file, found.error)
                             : QStringLiteral("%1 cannot be read").arg(file);
    QString where = QStringLiteral("and could not be moved aside, so nothing is saved to it");
    if (quarantined)
        where = QStringLiteral("quarantined as %1").arg(*quarantined);
    else if (access == DocumentAccess::ReadOnly)
        where = QStringLiteral("and is left as it is");
    const QString instead = version ? QStringLiteral("using the version of %1 instead")
                                          .arg(version->version.saved.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")))
                                    : QStringLiteral("it has no version that can be read, so it begins empty");
    return QStringLiteral("%1, %2; %3").arg(what, where, instead);
}

/// Replaces the document, which is quarantined, by `version`; removes it where there is none.
bool Repair(DocumentTransaction& transaction, const QString& file, const std::optional<ReadableVersion>& version)
{
    if (version)
        return transaction.Replace(version->reading.content, DocumentTransaction::VersionPolicy::BestEffort);
    return QFile::remove(file) || !QFile::exists(file);
}

} // namespace

LoadedDocument LoadDocument(const QString& file, DocumentAccess access)
{
    LoadedDocument loaded;
    loaded.reading = ReadDocument(file);
    if (!loaded.reading.NeedsRecovery())
        return loaded;

    // Another process may be repairing the document: what counts is what the owner of the lock finds.
    DocumentTransaction transaction(file);
    const bool isLocked = access == DocumentAccess::ReadWrite && transaction.Begin();
    if (isLocked) {
        loaded.reading = transaction.Before();
        if (!loaded.reading.NeedsRecovery())
            return loaded;
    }

    std::optional<ReadableVersion> version = NewestReadableVersion(file);
    loaded.isRecovered = true;
    loaded.isQuarantined = isLocked && transaction.Quarantine();
    loaded.isInPlace = loaded.isQuarantined && Repair(transaction, file, version);
    transaction.Commit();
    loaded.notice = Notice(file, loaded.reading, access, transaction.Quarantined(), version);
    loaded.reading = version ? std::move(version->reading)
                             : DocumentReading{DocumentReading::State::Missing, {}, DocumentText::Values(), {}};
    return loaded;
}

std::optional<ReadableVersion> NewestReadableVersion(const QString& file)
{
    const QList<ConfigVersion> versions = VersionFolder(file).List();
    for (const ConfigVersion& version : versions) {
        DocumentReading reading = ReadDocument(version.file);
        if (reading.state == DocumentReading::State::Valid)
            return ReadableVersion{version, std::move(reading)};
        Trace("platform/config/documentloader", __LINE__, [&] {
            return QStringLiteral("NewestReadableVersion(): The version %1 cannot be read").arg(version.file);
        });
    }
    return std::nullopt;
}
