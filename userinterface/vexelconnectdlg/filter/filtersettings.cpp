// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/filter/filtersettings.h"

#include "platform/cfgcenter.h"
#include "platform/icfg.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/filter/textmatcher.h"

#include <memory>

namespace {

const QString kSettingsNode = QStringLiteral("FilterSettings");
const QString kColumnKey = QStringLiteral("Column");
const QString kPatternKey = QStringLiteral("FilterPattern");
const QString kSearchModeKey = QStringLiteral("SearchMode");

std::unique_ptr<ICfg> OpenSettings()
{
    return std::unique_ptr<ICfg>(CfgCenter::GetAppCfg(View::User)->OpenChild(kSettingsNode, 0));
}

} // namespace

FilterSettings FilterSettings::Load()
{
    const auto node = OpenSettings();
    FilterSettings settings;
    settings.column = node->GetInt(kColumnKey, settings.column, 0);
    // One step only: with a value further out no column is selected.
    if (settings.column < 0)
        ++settings.column;
    else if (settings.column >= ConnectionsModel::kColumnCount)
        --settings.column;
    settings.pattern = node->GetString(kPatternKey, QString(), 0);
    settings.searchMode = node->GetInt(kSearchModeKey, settings.searchMode, 0);
    if (settings.searchMode < 0 || settings.searchMode > static_cast<int>(SearchMode::RegularExpression))
        settings.searchMode = static_cast<int>(SearchMode::PlainText);
    return settings;
}

void FilterSettings::Save() const
{
    const auto node = OpenSettings();
    node->SetInt(kColumnKey, column, 0);
    node->SetString(kPatternKey, pattern, 0);
    node->SetInt(kSearchModeKey, searchMode, 0);
}
