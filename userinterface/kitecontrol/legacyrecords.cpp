#include "userinterface/kitecontrol/legacyrecords.h"

#include "platform/cfgcenter.h"
#include "platform/icfg.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <algorithm>

namespace {

/// Copies all files below `from`, with their directories. Returns false if one could not be copied.
bool CopyFiles(const QString& from, const QString& to)
{
    const QDir source(from);
    const QDir target(to);
    QDirIterator files(from, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString file = files.next();
        const QString copy = target.filePath(source.relativeFilePath(file));
        const bool isCopied = target.mkpath(QFileInfo(copy).path()) && QFile::copy(file, copy);
        // A lock file or a temporary file of a save may be gone by now.
        if (!isCopied && QFileInfo::exists(file))
            return false;
    }
    return true;
}

} // namespace

LegacyRecords LegacyRecords::FromDirectory(const QString& directory)
{
    LegacyRecords result;
    result.configuration = directory;
    if (directory.isEmpty()) {
        result.problem = QStringLiteral("no configuration is known (VEXEL_CONFIG_DIR is not set)");
        return result;
    }
    if (!QFileInfo(directory).isDir()) {
        result.problem = QStringLiteral("the configuration directory does not exist");
        return result;
    }
    // An open store is its owner's: it is tried for writing, and a damaged document is moved out of the way. A reader
    // has no business with that, so it opens a copy. Each file of the store is whole at any time.
    const QTemporaryDir snapshot;
    if (!snapshot.isValid() || !CopyFiles(directory, snapshot.path()) || !CfgCenter::Open(snapshot.path())) {
        result.problem = QStringLiteral("the configuration directory cannot be read");
        return result;
    }
    result.records =
        FromDocument(CfgCenter::CreateCfg(QStringLiteral("KiteResources/ConnectData"), View::Shared, QString()));
    CfgCenter::Close();
    if (result.records.empty())
        result.problem = QStringLiteral("the configuration holds no records");
    return result;
}

std::vector<ConnectData> LegacyRecords::FromDocument(ICfg* document)
{
    const int declared = document->GetString(QStringLiteral("ConnectionCount"), QString(), 0).toInt();
    const int count = std::clamp(declared, 0, kMaximumCount);
    std::vector<ConnectData> records;
    records.reserve(static_cast<std::size_t>(count));
    for (int index = 0; index < count; ++index)
        records.emplace_back(index, document);
    return records;
}
