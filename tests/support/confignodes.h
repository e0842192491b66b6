// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/cfgcenter.h"
#include "platform/icfg.h"

#include <QString>

#include <memory>

/// Parts of the product configuration that several tests read.
namespace ConfigNodes {

/// The child `name` of the application configuration.
inline std::unique_ptr<ICfg> Child(const QString& name, View view = View::Application)
{
    return std::unique_ptr<ICfg>(CfgCenter::GetAppCfg(view)->OpenChild(name, 0));
}

inline std::unique_ptr<ICfg> Filter(View view = View::User)
{
    return Child(QStringLiteral("FilterSettings"), view);
}

/// The hex text that is stored for the model `name`; `none` where there is no text.
inline QString StoredSet(const QString& none, const QString& name = QStringLiteral("ConnectionsModel"),
                         View view = View::Application)
{
    return Child(name, view)->GetString(QStringLiteral("ModelMimeData"), none, 0);
}

inline void StoreSet(const QByteArray& document, const QString& name = QStringLiteral("ConnectionsModel"))
{
    Child(name)->SetString(QStringLiteral("ModelMimeData"), QString::fromLatin1(document.toHex()), 0);
}

/// The document with the legacy records; the configuration owns it.
inline ICfg* LegacyDocument()
{
    return CfgCenter::CreateCfg(QStringLiteral("KiteResources/ConnectData"), View::Shared, QString());
}

inline std::unique_ptr<ICfg> LegacyRecord(int number)
{
    return std::unique_ptr<ICfg>(LegacyDocument()->OpenChild(QStringLiteral("ConnectData%1").arg(number), 0));
}

inline QString LegacyCount(const QString& none)
{
    return LegacyDocument()->GetString(QStringLiteral("ConnectionCount"), none, 0);
}

} // namespace ConfigNodes
