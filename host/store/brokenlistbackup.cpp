// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/store/brokenlistbackup.h"

#include "files/atomicfile.h"
#include "files/boundedfile.h"
#include "files/siblingname.h"
#include "host/store/storedset.h"
#include "platform/configversions.h"
#include "platform/tracing.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include <optional>

namespace {

const QString kMark = QStringLiteral(".malformed-");

/// Reads a document. It was read before, so its size is acceptable.
std::optional<QByteArray> ReadFile(const QString& fileName)
{
    return ReadRegularFile(fileName, QFileInfo(fileName).size());
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
    return ReplaceRegularFile(name, *content, FileAccess::Private).isEmpty() ? name : QString();
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
    Trace("host/store/brokenlistbackup", __LINE__,
          [&message] { return QStringLiteral("BackUpBrokenList(): %1").arg(message); });
    return message;
}
