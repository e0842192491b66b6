// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/config/documentloader.h"

#include "platform/config/documenttransaction.h"
#include "platform/config/versionfolder.h"
#include "platform/tracing.h"

#include <QFile>

#include <utility>

namespace {

using State = DocumentReading::State;

QString RecoveryNotice(const QString& file, const DocumentReading& found, bool isInPlace, const QString& quarantined,
                       const std::optional<ReadableVersion>& version)
{
    QString what = QStringLiteral("%1 cannot be read").arg(file);
    if (found.state == State::Damaged)
        what = QStringLiteral("%1 is damaged (%2)").arg(file, found.error);
    else if (found.state == State::Missing)
        what = QStringLiteral("%1 is missing").arg(file);
    QString where;
    if (!isInPlace)
        where = QStringLiteral(", and is left as it is");
    else if (!quarantined.isEmpty())
        where = QStringLiteral(", quarantined as %1").arg(quarantined);
    const QString instead = version ? QStringLiteral("using the version of %1 instead")
                                          .arg(version->version.saved.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")))
                                    : QStringLiteral("it has no version that can be read, so it begins empty");
    return QStringLiteral("%1%2; %3").arg(what, where, instead);
}

/// Replaces a document that `NeedsRecovery`. On failure the destructor of `transaction` undoes what was done.
bool Repair(DocumentTransaction& transaction, const QString& file, const std::optional<ReadableVersion>& version)
{
    const bool isDone =
        version ? transaction.Replace(version->reading.content, DocumentTransaction::VersionPolicy::BestEffort)
                : !QFile::exists(file) || (transaction.Quarantine() && (QFile::remove(file) || !QFile::exists(file)));
    if (isDone)
        transaction.Commit();
    return isDone;
}

LoadedDocument Recover(const QString& file, const DocumentReading& found, DocumentTransaction* transaction)
{
    std::optional<ReadableVersion> version = NewestReadableVersion(file);
    LoadedDocument loaded;
    loaded.isRecovered = true;
    loaded.isLost = !version;
    loaded.isInPlace = transaction && Repair(*transaction, file, version);
    loaded.notice = RecoveryNotice(file, found, loaded.isInPlace,
                                   transaction ? transaction->QuarantinedFile() : QString(), version);
    loaded.reading =
        version ? std::move(version->reading) : DocumentReading{State::Missing, {}, DocumentText::Values(), true, {}};
    return loaded;
}

LoadedDocument Adopt(const QString& file, const DocumentReading& found, DocumentTransaction* transaction)
{
    LoadedDocument loaded;
    loaded.reading = found;
    loaded.wasIntact = false;
    const QByteArray content = DocumentText::Write(*found.values);
    QString where = QStringLiteral("the file is left as it is");
    if (transaction && transaction->Replace(content, DocumentTransaction::VersionPolicy::Required)) {
        transaction->Commit();
        loaded.reading.content = content;
        loaded.reading.isIntact = true;
        where = QStringLiteral("the text as it was found is now among the versions");
    } else if (transaction) {
        where += QStringLiteral(": %1").arg(transaction->Error());
    }
    loaded.notice = AdoptionNotice(file, where);
    return loaded;
}

} // namespace

LoadedDocument LoadDocument(const QString& file, DocumentAccess access)
{
    const auto isFine = [&file](const DocumentReading& reading) {
        return reading.isIntact && !NeedsRecovery(file, reading);
    };
    LoadedDocument loaded;
    loaded.reading = ReadDocument(file);
    if (isFine(loaded.reading))
        return loaded;

    // Another process may be repairing the document: what counts is what the owner of the lock finds.
    DocumentTransaction transaction(file);
    const bool isLocked = access == DocumentAccess::ReadWrite && transaction.Begin();
    if (isLocked) {
        loaded.reading = transaction.Before();
        if (isFine(loaded.reading))
            return loaded;
    }
    DocumentTransaction* const locked = isLocked ? &transaction : nullptr;
    return loaded.reading.isIntact ? Recover(file, loaded.reading, locked) : Adopt(file, loaded.reading, locked);
}

bool NeedsRecovery(const QString& file, const DocumentReading& reading)
{
    if (reading.state == State::Missing)
        return !VersionFolder(file).List().isEmpty() || !QuarantinedNames(file).isEmpty();
    return reading.NeedsRecovery();
}

QString AdoptionNotice(const QString& file, const QString& consequence)
{
    return QStringLiteral("%1 was changed by something else than this program, or is damaged in its middle: its digest "
                          "does not match its values; they are used, and %2")
        .arg(file, consequence);
}

std::optional<ReadableVersion> NewestReadableVersion(const QString& file)
{
    const QList<ConfigVersion> versions = VersionFolder(file).List();
    for (const ConfigVersion& version : versions) {
        DocumentReading reading = ReadDocument(version.file);
        if (reading.state == State::Valid) {
            if (!reading.isIntact) // a text as it was found
                reading.content = DocumentText::Write(*reading.values);
            return ReadableVersion{version, std::move(reading)};
        }
        Trace("platform/config/documentloader", __LINE__, [&] {
            return QStringLiteral("NewestReadableVersion(): The version %1 cannot be read").arg(version.file);
        });
    }
    return std::nullopt;
}
