#include "host/store/brokenlistbackup.h"

#include "files/atomicfile.h"
#include "files/retry.h"
#include "files/siblingname.h"
#include "host/store/storedset.h"
#include "platform/configversions.h"
#include "platform/tracing.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <optional>

namespace {

const QString kMark = QStringLiteral(".malformed-");

std::optional<QByteArray> ReadFile(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray content = file.readAll();
    return file.error() == QFileDevice::NoError ? std::optional(content) : std::nullopt;
}

/// Returns the path of an existing copy with this `content`; empty if there is none.
QString FindCopy(const QFileInfo& document, const QByteArray& content)
{
    const QFileInfoList copies =
        document.dir().entryInfoList({document.fileName() + kMark + QLatin1Char('*')}, QDir::Files, QDir::Name);
    for (const QFileInfo& copy : copies)
        if (copy.size() == content.size() && ReadFile(copy.filePath()) == content)
            return copy.filePath();
    return {};
}

/// Copies `document`, unless an identical copy exists. Returns the copy's path; empty on failure.
QString CopyDocument(const QString& document)
{
    const std::optional<QByteArray> content = ReadFile(document);
    if (!content)
        return {};
    if (const QString existing = FindCopy(QFileInfo(document), *content); !existing.isEmpty())
        return existing;
    const QString name = UniqueSiblingName(document, kMark, QDateTime::currentDateTime());
    return Retry([&] { return WriteAtomically(name, *content); }) ? name : QString();
}

} // namespace

QString BackUpBrokenList(const StoredSet& set)
{
    if (set.state != StoredSet::State::Malformed)
        return {};

    const QString document = ConfigVersions(View::Application, QString()).DocumentFile();
    const QString copy = CopyDocument(document);
    const QString message =
        QStringLiteral("the stored list is malformed after %1; %2")
            .arg(set.entries == 1 ? QStringLiteral("1 entry") : QStringLiteral("%1 entries").arg(set.entries),
                 copy.isEmpty() ? QStringLiteral("%1 could not be copied and will be overwritten").arg(document)
                                : QStringLiteral("a copy is kept as %1").arg(copy));
    TraceWhenWanted("host/store/brokenlistbackup", __LINE__,
                    [&message] { return QStringLiteral("BackUpBrokenList(): %1").arg(message); });
    return message;
}
