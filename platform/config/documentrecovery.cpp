#include "platform/config/documentrecovery.h"

#include "platform/config/versionfolder.h"
#include "platform/tracing.h"

#include <QFile>

#include <utility>

DocumentFile::Reading ReadVersion(const ConfigVersion& version)
{
    auto reading = ReadDocument(version.file);
    if (reading.content.isEmpty())
        reading.text.reset();
    return reading;
}

std::optional<ReadableVersion> NewestReadable(const QString& document)
{
    const QList<ConfigVersion> versions = VersionFolder(document).List();
    for (const ConfigVersion& version : versions) {
        auto reading = ReadVersion(version);
        if (reading.text)
            return ReadableVersion{version, std::move(reading)};
        TraceWhenWanted("platform/config/documentrecovery", __LINE__, [&] {
            return QStringLiteral("NewestReadable(): The version %1 cannot be read").arg(version.file);
        });
    }
    return std::nullopt;
}

bool NeedsRecovery(const DocumentFile::Reading& reading)
{
    return reading.state == DocumentFile::State::Damaged || reading.state == DocumentFile::State::Unreadable;
}

Recovery Recover(const DocumentFile& file, const DocumentFile::Reading& found, bool isLocked)
{
    Recovery recovery;
    auto version = NewestReadable(file.Path());
    const auto aside = isLocked ? file.Quarantine() : std::nullopt;
    recovery.isQuarantined = aside.has_value();
    if (aside && version)
        recovery.isInPlace = file.Replace(version->reading.content);
    else if (aside)
        recovery.isInPlace = QFile::remove(file.Path()) || !QFile::exists(file.Path());

    const QString what = found.state == DocumentFile::State::Damaged
                             ? QStringLiteral("%1 is damaged").arg(file.Path())
                             : QStringLiteral("%1 cannot be read").arg(file.Path());
    const QString where = aside ? QStringLiteral("kept as %1").arg(*aside)
                                : QStringLiteral("and could not be moved aside, so nothing is saved to it");
    const QString instead = version ? QStringLiteral("using the version of %1 instead")
                                          .arg(version->version.saved.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")))
                                    : QStringLiteral("there is no version of it that can be read, so it begins empty");
    recovery.notice = QStringLiteral("%1, %2; %3").arg(what, where, instead);

    if (version) {
        recovery.reading = std::move(version->reading);
    } else {
        recovery.reading.state = DocumentFile::State::Missing;
        recovery.reading.text = std::make_unique<IniText>(QByteArray());
    }
    return recovery;
}
