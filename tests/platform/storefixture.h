// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/cfgcenter.h"
#include "platform/icfg.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <optional>

/// A temporary store with one document that tests change and damage.
class StoreFixture
{
public:
    StoreFixture() { Reopen(); }
    ~StoreFixture() { CfgCenter::Close(); }

    StoreFixture(const StoreFixture&) = delete;
    StoreFixture& operator=(const StoreFixture&) = delete;

    /// Reopens the store, so that the document is read again.
    void Reopen() const { CfgCenter::Open(m_store.path()); }

    QString Path(const QString& name) const { return m_store.filePath(name); }
    QString Document() const { return Path(QStringLiteral("shared/Document.json")); }
    QString Versions() const { return Document() + QStringLiteral(".versions"); }

    static ICfg* Root() { return CfgCenter::CreateCfg(QStringLiteral("Document"), View::Shared, {}); }
    static int Number(ICfg* root = Root()) { return root->GetInt(QStringLiteral("Number"), -1, 0); }
    static bool Save(int number)
    {
        Root()->SetInt(QStringLiteral("Number"), number, 0);
        return CfgCenter::SaveDocument();
    }

    /// The names of the document's quarantined copies.
    QStringList Quarantined() const
    {
        return QDir(Path(QStringLiteral("shared"))).entryList({QStringLiteral("Document.json.damaged-*")});
    }

private:
    const QTemporaryDir m_store;
};
