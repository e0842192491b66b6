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

/// A document was read already, so its size is bearable.
std::optional<QByteArray> Content(const QString& fileName)
{
    return ReadRegularFile(fileName, QFileInfo(fileName).size());
}

/// The copy that holds `content` already; empty where there is none.
QString FormerCopy(const QFileInfo& document, const QByteArray& content)
{
    const QFileInfoList copies =
        document.dir().entryInfoList({document.fileName() + kMark + QLatin1Char('*')}, QDir::Files, QDir::Name);
    for (const QFileInfo& copy : copies)
        if (copy.size() == content.size() && Content(copy.filePath()) == content)
            return copy.filePath();
    return {};
}

/// Where the copy of `document` is; empty where none could be made.
QString Keep(const QString& document)
{
    const std::optional<QByteArray> content = Content(document);
    if (!content)
        return {};
    if (const QString former = FormerCopy(QFileInfo(document), *content); !former.isEmpty())
        return former;
    const QString name = UniqueSiblingName(document, kMark, QDateTime::currentDateTime());
    return ReplaceRegularFile(name, *content).isEmpty() ? name : QString();
}

} // namespace

QString BackUpBrokenList(const StoredSet& set)
{
    if (set.state != StoredSet::State::Malformed)
        return {};

    const QString document = ConfigVersions(View::Application, QString()).DocumentFile();
    const QString copy = Keep(document);
    const QString said =
        QStringLiteral("the stored list breaks off after %1; %2")
            .arg(set.entries == 1 ? QStringLiteral("1 entry") : QStringLiteral("%1 entries").arg(set.entries),
                 copy.isEmpty() ? QStringLiteral("%1 could not be copied and will be overwritten").arg(document)
                                : QStringLiteral("its document is kept as %1").arg(copy));
    Trace("host/store/brokenlistbackup", __LINE__,
          [&said] { return QStringLiteral("BackUpBrokenList(): %1").arg(said); });
    return said;
}
