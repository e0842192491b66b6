#include "platform/configversions.h"

#include "platform/config/configdocument.h"
#include "platform/config/confignames.h"
#include "platform/config/confignode.h"
#include "platform/config/documentfile.h"
#include "platform/config/documentrecovery.h"
#include "platform/config/versionfolder.h"
#include "platform/tracing.h"

#include <QFileInfo>

#include <memory>
#include <optional>

namespace {

using State = DocumentFile::State;

QString FileOf(View view, const QString& name)
{
    const QString store = CfgCenter::Directory();
    if (store.isEmpty())
        return {};
    return store + u'/' + (name.isEmpty() ? ConfigNames::ApplicationFile(view) : ConfigNames::DocumentFile(view, name));
}

ConfigVersions::Obstacle ObstacleTo(const QString& file, const DocumentFile::Reading& reading)
{
    if (reading.text)
        return ConfigVersions::Obstacle::None;
    // What is there and no file is no document for anybody.
    const QFileInfo info(file);
    const bool isUnread = (reading.state == State::Unreadable || reading.state == State::Unavailable) &&
                          (info.isFile() || !info.exists());
    return isUnread ? ConfigVersions::Obstacle::Unread : ConfigVersions::Obstacle::Damaged;
}

/// Of a working copy that no file belongs to.
std::unique_ptr<ICfg> RootOf(const QString& file, const DocumentFile::Reading& reading,
                             ConfigVersions::Obstacle* obstacle)
{
    if (obstacle)
        *obstacle = ObstacleTo(file, reading);
    if (!reading.text)
        return nullptr;
    return std::make_unique<ConfigNode>(std::make_shared<ConfigDocument>(reading.text->Values()), QString());
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
    const auto found = m_file.isEmpty() ? std::nullopt : ::NewestReadable(m_file);
    return found ? std::optional(found->version) : std::nullopt;
}

std::unique_ptr<ICfg> ConfigVersions::Open(const ConfigVersion& version, Obstacle* obstacle) const
{
    return RootOf(version.file, ReadVersion(version), obstacle);
}

std::unique_ptr<ICfg> ConfigVersions::OpenCurrent(Obstacle* obstacle) const
{
    if (m_file.isEmpty()) {
        if (obstacle)
            *obstacle = Obstacle::Unread;
        return nullptr;
    }
    return RootOf(m_file, ::DocumentFile(m_file).Read(), obstacle);
}

bool ConfigVersions::Restore(const ConfigVersion& version, QString* quarantined) const
{
    const auto fail = [&](int line, const char* reason) {
        Trace("platform/configversions", line, [&] {
            return QStringLiteral("ConfigVersions::Restore(): Could not put %1 in the place of %2: %3")
                .arg(version.file, m_file, QString::fromLatin1(reason));
        });
        return false;
    };
    if (m_file.isEmpty())
        return fail(__LINE__, "no configuration directory is open");

    const ::DocumentFile file(m_file);
    const auto lock = file.Lock();
    if (!lock)
        return fail(__LINE__, "the document's lock cannot be taken");
    file.RemoveLeftovers();
    const auto wanted = ReadVersion(version);
    if (!wanted.text)
        return fail(__LINE__, "the version cannot be read");

    const VersionFolder versions(m_file);
    std::optional<QString> kept;
    std::optional<QString> aside;
    const auto present = file.Read();
    switch (present.state) {
    case State::Unavailable:
        return fail(__LINE__, "what is in its place cannot be read at the moment");
    case State::Missing:
        break;
    case State::Whole:
        if (present.content == wanted.content)
            return true;
        if (present.text->IsEmpty())
            break;
        kept = versions.Keep(present.content);
        if (!kept)
            return fail(__LINE__, "the present state cannot be kept");
        break;
    case State::Damaged:
    case State::Unreadable:
        aside = file.Quarantine();
        if (!aside)
            return fail(__LINE__, "what is in its place cannot be moved aside");
        break;
    }

    if (!file.Replace(wanted.content)) {
        VersionFolder::Forget(kept);
        if (aside)
            file.UndoQuarantine(*aside);
        return fail(__LINE__, "the file cannot be written");
    }
    versions.Prune();
    if (quarantined)
        *quarantined = aside.value_or(QString());
    return true;
}
