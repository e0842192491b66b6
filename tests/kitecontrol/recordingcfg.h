// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/icfg.h"

#include <QMap>
#include <QString>
#include <QStringList>

#include <memory>

/// A configuration in memory that records all calls on its nodes as text.
class RecordingCfg : public ICfg
{
public:
    /// Shared by all nodes of one configuration.
    struct Store
    {
        QMap<QString, QString> values; ///< by "child/key", or "key" at the root
        QStringList calls;
        int openHandles = 0; ///< handles that callers of OpenChild have not deleted
        bool opensChildren = true;
    };

    RecordingCfg()
        : RecordingCfg(std::make_shared<Store>(), QString())
    {
    }
    ~RecordingCfg() override
    {
        if (!m_sPath.isEmpty()) {
            --m_pStore->openHandles;
            Note(QStringLiteral("release"));
        }
    }

    Store& Contents() { return *m_pStore; }
    QString Value(const QString& path) const { return m_pStore->values.value(path); }
    bool Has(const QString& path) const { return m_pStore->values.contains(path); }

    ICfg* OpenChild(const QString& key, int flag) override
    {
        Note(QStringLiteral("open %1 flag %2").arg(key).arg(flag));
        if (!m_pStore->opensChildren)
            return nullptr;
        ++m_pStore->openHandles;
        return new RecordingCfg(m_pStore, m_sPath + key + QLatin1Char('/'));
    }
    void Remove(const QString& key, int flag) override
    {
        Note(QStringLiteral("remove %1 flag %2").arg(key).arg(flag));
        m_pStore->values.remove(m_sPath + key);
    }
    QString GetString(const QString& key, const QString& defaultValue, int mode) override
    {
        Note(QStringLiteral("string %1 default <%2> mode %3").arg(key, defaultValue).arg(mode));
        return m_pStore->values.value(m_sPath + key, defaultValue);
    }
    int GetInt(const QString& key, int defaultValue, int mode) override
    {
        Note(QStringLiteral("int %1 default <%2> mode %3").arg(key).arg(defaultValue).arg(mode));
        return Has(m_sPath + key) ? Value(m_sPath + key).toInt() : defaultValue;
    }
    bool GetBool(const QString& key, bool defaultValue, int mode) override
    {
        Note(QStringLiteral("bool %1 default <%2> mode %3").arg(key).arg(defaultValue).arg(mode));
        return Has(m_sPath + key) ? Value(m_sPath + key) == QLatin1String("true") : defaultValue;
    }
    void SetString(const QString& key, const QString& value, int flag) override
    {
        Note(QStringLiteral("set string %1 <%2> flag %3").arg(key, value).arg(flag));
        m_pStore->values[m_sPath + key] = value;
    }
    void SetInt(const QString& key, int value, int flag) override
    {
        Note(QStringLiteral("set int %1 <%2> flag %3").arg(key).arg(value).arg(flag));
        m_pStore->values[m_sPath + key] = QString::number(value);
    }
    void SetBool(const QString& key, bool value, int flag) override
    {
        Note(QStringLiteral("set bool %1 <%2> flag %3").arg(key).arg(value).arg(flag));
        m_pStore->values[m_sPath + key] = value ? QStringLiteral("true") : QStringLiteral("false");
    }

private:
    RecordingCfg(std::shared_ptr<Store> store, const QString& path)
        : m_pStore(std::move(store))
        , m_sPath(path)
    {
    }

    void Note(const QString& call) { m_pStore->calls.append(call); }

    const std::shared_ptr<Store> m_pStore;
    const QString m_sPath; ///< the prefix of the keys; empty for the root
};
