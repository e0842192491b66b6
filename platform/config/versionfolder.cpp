// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/config/versionfolder.h"

#include "files/atomicfile.h"
#include "platform/config/documentfile.h"
#include "platform/tracing.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <system_error>
#include <utility>

namespace {

constexpr const char* kSource = "platform/config/versionfolder";

constexpr qsizetype kDepth = 10;
constexpr qsizetype kDays = 30;
constexpr int kDigits = 8;
constexpr qulonglong kLastNumber = 99'999'999;

const QString kTimeFormat = QStringLiteral("yyyyMMdd'T'HHmmss.zzz");

qulonglong NumberOf(const QString& name)
{
    return name.left(kDigits).toULongLong();
}

QString Digits(qulonglong number)
{
    return QStringLiteral("%1").arg(number, kDigits, 10, QLatin1Char('0'));
}

QDateTime TimeOf(const QString& name)
{
    QDateTime time = QDateTime::fromString(name.mid(kDigits + 1).section(u'Z', 0, 0), kTimeFormat);
    time.setTimeSpec(Qt::UTC);
    return time;
}

bool IsVersionName(const QString& name)
{
    static const QRegularExpression form(QStringLiteral("^[0-9]{8}-[0-9]{8}T[0-9]{6}\\.[0-9]{3}Z\\.json$"));
    return form.match(name).hasMatch() && TimeOf(name).isValid();
}

/// Whether the file holds `content`. Reads it only where the sizes agree.
bool Holds(const QString& path, const QByteArray& content)
{
    QFile file(path);
    return QFileInfo(path).size() == content.size() && file.open(QIODevice::ReadOnly) && file.readAll() == content;
}

} // namespace

VersionFolder::VersionFolder(QString document)
    : m_document(std::move(document))
{
}

QString VersionFolder::Path() const
{
    // No document has this name: the only dot in theirs is the one before "json".
    return m_document + QStringLiteral(".versions");
}

QList<ConfigVersion> VersionFolder::List() const
{
    QList<ConfigVersion> versions;
    const QString folder = Path() + u'/';
    const QStringList names = Names();
    for (const QString& name : names)
        if (!IsSameFile(folder + name, m_document))
            versions.append({folder + name, TimeOf(name).toLocalTime()});
    return versions;
}

VersionFolder::Kept VersionFolder::Keep(const QByteArray& content) const
{
    const auto fail = [](const QString& error) -> Kept {
        return {Outcome::Failed, {}, error};
    };

    const QString folder = Path();
    if (!CreateFolder(folder))
        return fail(QStringLiteral("the folder %1 cannot be created").arg(folder));
    QStringList names = Names();
    // A file that somebody else put there may have a number that leaves no higher one.
    if (!names.isEmpty() && NumberOf(names.front()) >= kLastNumber) {
        Renumber(names);
        names = Names();
    }
    const QString newest = names.isEmpty() ? QString() : names.front();
    if (!newest.isEmpty()) {
        const QString newestFile = folder + u'/' + newest;
        if (IsSameFile(newestFile, m_document) || Holds(newestFile, content))
            return {Outcome::AlreadyNewest, {}, {}};
        if (NumberOf(newest) >= kLastNumber)
            return fail(QStringLiteral("the files in %1 cannot be renumbered").arg(folder));
    }

    // A hard link costs next to nothing, cannot differ from the document, and does not fill the disk. Replacing the
    // document leaves the link's file alone. Not every file system has hard links.
    const QString file = folder + u'/' + NextName(newest);
    const QFileInfo document(m_document);
    std::error_code error;
    std::filesystem::create_hard_link(QFileInfo(document.canonicalFilePath()).filesystemFilePath(),
                                      QFileInfo(file).filesystemFilePath(), error);
    if (error) {
        if (const QString reason = WriteWithRetries(file, content, FileAccess::Private); !reason.isEmpty())
            return fail(QStringLiteral("%1: %2").arg(folder, reason));
    }
    return {Outcome::Added, file, {}};
}

void VersionFolder::Prune() const
{
    const QString folder = Path() + u'/';
    const QStringList names = Names();
    QSet<QDate> days;
    for (qsizetype i = 0; i < names.size(); ++i) {
        const QDate day = TimeOf(names.at(i)).toLocalTime().date();
        const bool isLastOfDay = days.size() < kDays && !days.contains(day);
        if (isLastOfDay)
            days.insert(day);
        if (i < kDepth || isLastOfDay)
            continue;
        if (!QFile::remove(folder + names.at(i)))
            Trace(kSource, __LINE__, [&] {
                return QStringLiteral("VersionFolder::Prune(): Could not remove the old version %1")
                    .arg(folder + names.at(i));
            });
    }
}

QString VersionFolder::NextName(const QString& newest) const
{
    const qulonglong number = newest.isEmpty() ? 1 : NumberOf(newest) + 1;
    const auto nameOf = [number](const QDateTime& time) {
        return QStringLiteral("%1-%2Z.json").arg(Digits(number), time.toString(kTimeFormat));
    };
    const QString name = nameOf(QFileInfo(m_document).lastModified().toUTC());
    return IsVersionName(name) ? name : nameOf(QDateTime::currentDateTimeUtc()); // a file can claim any year
}

/// Gives the versions, newest first in `names`, the numbers from 1 on. They keep their order at every moment, as the
/// oldest goes first and no number becomes larger.
void VersionFolder::Renumber(const QStringList& names) const
{
    QDir folder(Path());
    qulonglong number = 0;
    std::for_each(names.crbegin(), names.crend(), [&folder, &number](const QString& name) {
        ++number;
        if (NumberOf(name) > number)
            folder.rename(name, Digits(number) + name.mid(kDigits));
    });
}

// Newest first.
QStringList VersionFolder::Names() const
{
    QStringList names = QDir(Path()).entryList({QStringLiteral("*-*Z.json")}, QDir::Files, QDir::NoSort);
    names.removeIf([](const QString& name) { return !IsVersionName(name); });
    std::sort(names.begin(), names.end(), std::greater<>());
    return names;
}
