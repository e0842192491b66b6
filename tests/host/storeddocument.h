// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/cfgcenter.h"
#include "platform/icfg.h"

#include <QByteArray>
#include <QString>

#include <memory>

/// A connection list document with `count` entries.
inline QByteArray ListOf(int count)
{
    QByteArray document = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<ConnectionEntries>\n";
    for (int i = 1; i <= count; ++i) {
        document += "  <Connection>\n    <ConnectionName><![CDATA[Entry " + QByteArray::number(i) +
                    "]]></ConnectionName>\n  </Connection>\n";
    }
    return document + "</ConnectionEntries>\n";
}

/// Stores `hex` where the plug-in stores its list; `CfgCenter::SaveDocument` is up to the caller.
inline void StoreHex(const QString& hex)
{
    const std::unique_ptr<ICfg> node(
        CfgCenter::GetAppCfg(View::Application)->OpenChild(QStringLiteral("ConnectionsModel"), 0));
    node->SetString(QStringLiteral("ModelMimeData"), hex, 0);
}

inline void StoreList(const QByteArray& document)
{
    StoreHex(QString::fromLatin1(document.toHex()));
}
