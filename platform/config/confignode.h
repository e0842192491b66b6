// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/icfg.h"

#include <QString>

#include <memory>

class ConfigDocument;

/// A handle on one node of a document. Shares the document, so it stays usable after the centre has let go of it.
class ConfigNode : public ICfg
{
public:
    /// @param path the node's key path, empty for the document's root.
    ConfigNode(std::shared_ptr<ConfigDocument> document, const QString& path);

    ICfg* OpenChild(const QString& key, int flag) override;
    void Remove(const QString& key, int flag) override;
    QString GetString(const QString& key, const QString& defaultValue, int mode) override;
    int GetInt(const QString& key, int defaultValue, int mode) override;
    bool GetBool(const QString& key, bool defaultValue, int mode) override;
    void SetString(const QString& key, const QString& value, int flag) override;
    void SetInt(const QString& key, int value, int flag) override;
    void SetBool(const QString& key, bool value, int flag) override;

private:
    QString PathOf(const QString& key) const;

    const std::shared_ptr<ConfigDocument> m_document;
    const QString m_prefix; // empty, or the node's path with a slash behind it
};
