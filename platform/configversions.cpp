// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/configversions.h"

#include "platform/cfgcenter.h"
#include "platform/config/configdocument.h"
#include "platform/config/confignames.h"
#include "platform/config/confignode.h"
#include "platform/config/documentloader.h"
#include "platform/config/documenttransaction.h"
#include "platform/config/versionfolder.h"
#include "platform/tracing.h"

#include <QFileInfo>

#include <memory>
#include <optional>

namespace {

using State = DocumentReading::State;

QString FileOf(View view, const QString& name)
{
    const QString store = CfgCenter::Directory();
    if (store.isEmpty())
        return {};
    return store + u'/' + (name.isEmpty() ? ConfigNames::ApplicationFile(view) : ConfigNames::DocumentFile(view, name));
}

ConfigVersions::Obstacle ObstacleTo(const QString& file, const DocumentReading& reading)
{
    if (reading.values)
        return NeedsRecovery(file, reading) ? ConfigVersions::Obstacle::Missing : ConfigVersions::Obstacle::None;
    if (reading.state == State::Unavailable)
        return ConfigVersions::Obstacle::Unavailable;
    // What is there and no file is no document for anybody.
    return reading.state == State::Unreadable && QFileInfo(file).isFile() ? ConfigVersions::Obstacle::Unread
                                                                          : ConfigVersions::Obstacle::Damaged;
}

/// Of a working copy that no file belongs to.
std::unique_ptr<ICfg> RootOf(const QString& file, const DocumentReading& reading, ConfigVersions::Obstacle* obstacle)
{
    const ConfigVersions::Obstacle found = ObstacleTo(file, reading);
    if (obstacle)
        *obstacle = found;
    if (found != ConfigVersions::Obstacle::None)
        return nullptr;
    return std::make_unique<ConfigNode>(std::make_shared<ConfigDocument>(*reading.values), QString());
}

} // namespace

ConfigVersions::ConfigVersions(View view, const QString& name)
    : m_file(FileOf(view, name))
{
}

QString ConfigVersions::DocumentFile() const
{
    return m_file;
}

QString ConfigVersions::Folder() const
{
    return m_file.isEmpty() ? QString() : VersionFolder(m_file).Path();
}

QList<ConfigVersion> ConfigVersions::List() const
{
    return m_file.isEmpty() ? QList<ConfigVersion>() : VersionFolder(m_file).List();
}

std::optional<ConfigVersion> ConfigVersions::NewestReadable() const
{
    const auto found = m_file.isEmpty() ? std::nullopt : NewestReadableVersion(m_file);
    return found ? std::optional(found->version) : std::nullopt;
}

std::unique_ptr<ICfg> ConfigVersions::Open(const ConfigVersion& version, Obstacle* obstacle) const
{
    DocumentReading reading = ReadDocument(version.file);
    if (reading.state == State::Missing)
        reading.values.reset();
    return RootOf(version.file, reading, obstacle);
}

std::unique_ptr<ICfg> ConfigVersions::OpenCurrent(Obstacle* obstacle) const
{
    if (m_file.isEmpty()) {
        if (obstacle)
            *obstacle = Obstacle::Unavailable;
        return nullptr;
    }
    return RootOf(m_file, ReadDocument(m_file), obstacle);
}

bool ConfigVersions::Restore(const ConfigVersion& version, QString* quarantined) const
{
    const auto fail = [&](int line, const QString& reason) {
        Trace("platform/configversions", line, [&] {
            return QStringLiteral("ConfigVersions::Restore(): Could not replace %1 by %2: %3")
                .arg(m_file, version.file, reason);
        });
        return false;
    };
    if (m_file.isEmpty())
        return fail(__LINE__, QStringLiteral("no configuration directory is open"));

    DocumentTransaction transaction(m_file);
    if (!transaction.Begin())
        return fail(__LINE__, transaction.Error());
    const DocumentReading wanted = ReadDocument(version.file);
    if (wanted.state != DocumentReading::State::Valid)
        return fail(__LINE__, QStringLiteral("the version cannot be read"));
    const QByteArray content = wanted.isIntact ? wanted.content : DocumentText::Write(*wanted.values);
    if (!transaction.Replace(content, DocumentTransaction::VersionPolicy::Required))
        return fail(__LINE__, transaction.Error());
    transaction.Commit();
    if (quarantined)
        *quarantined = transaction.QuarantinedFile();
    return true;
}
