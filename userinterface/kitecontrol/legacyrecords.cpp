// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/kitecontrol/legacyrecords.h"

#include "platform/cfgcenter.h"
#include "platform/configversions.h"
#include "platform/icfg.h"

#include <QFileInfo>

#include <algorithm>

LegacyRecords LegacyRecords::FromDirectory(const QString& directory)
{
    LegacyRecords result;
    result.configuration = directory;
    if (directory.isEmpty()) {
        result.problem = QStringLiteral("no configuration is known (VEXEL_CONFIG_DIR is not set)");
        return result;
    }
    if (!CfgCenter::OpenReadOnly(directory)) {
        result.problem = QStringLiteral("the configuration directory does not exist");
        return result;
    }
    const QString name = QStringLiteral("KiteResources/ConnectData");
    const bool isTooLarge = QFileInfo(ConfigVersions(View::Shared, name).DocumentFile()).size() > kMaximumSize;
    bool isReadable = true;
    CfgCenter::SetNoticeSink([&isReadable](const QString& /*notice*/) { isReadable = false; });
    if (!isTooLarge)
        result.records = FromDocument(CfgCenter::CreateCfg(name, View::Shared, QString()));
    CfgCenter::SetNoticeSink({});
    CfgCenter::Close();
    if (isTooLarge) {
        result.problem = QStringLiteral("the records are too large to be read");
    } else if (result.records.empty()) {
        result.problem = isReadable ? QStringLiteral("the configuration holds no records")
                                    : QStringLiteral("the records cannot be read");
    }
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
