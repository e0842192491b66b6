// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "vexelctl/support/accessreport.h"

#include "host/output/rotatingfile.h"
#include "host/system/otherusers_unix.h"
#include "vexelctl/support/supportreport.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <optional>
#include <utility>

#include <unistd.h>

namespace {

const QString kConfiguration = QStringLiteral("the configuration, which decides what programs are started");

using Status = struct stat;

std::optional<Status> StatusOf(const QString& path)
{
    Status status = {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return std::nullopt;
    return status;
}

/// Collects the rows of the table.
class Access
{
public:
    explicit Access(uid_t user)
        : m_user(user)
    {
    }

    void CheckFolders(const QString& directory);
    void CheckConfiguration(const QString& directory);
    void CheckTraceFiles(const QString& traceFile);
    /// Returns the rows, the dangerous ones first.
    QList<QJsonArray> Rows() const { return m_dangerous + m_others; }

private:
    bool CanOthersReach(const QString& path) const;
    bool CanOthersReplace(const QString& path, const Status& folder) const;
    void Check(const QString& path, const QString& written);
    QJsonArray Row(const QString& path, const Status& status, const QString& text) const;

    uid_t m_user;
    QList<QJsonArray> m_dangerous;
    QList<QJsonArray> m_others;
};

/// Finds the folders above `directory` in which others can put another one in its place.
void Access::CheckFolders(const QString& directory)
{
    QStringList checked;
    // A link in the path can be replaced as well as the folders that it leads to.
    for (const QString& first : {QFileInfo(directory).canonicalFilePath(), QFileInfo(directory).absoluteFilePath()}) {
        for (QString path = first; path.startsWith(u'/') && path != QLatin1String("/");) {
            const QString folder = QFileInfo(path).path();
            const std::optional<Status> status = StatusOf(folder);
            if (status && CanOthersReplace(path, *status) && !checked.contains(path))
                m_dangerous.append(Row(folder, *status,
                                       QStringLiteral("OTHERS CAN REPLACE \"%1\" in it, and so %2")
                                           .arg(QFileInfo(path).fileName(), kConfiguration)));
            checked.append(path);
            path = folder;
        }
    }
}

/// Returns whether every folder that `path` lies in lets others through.
bool Access::CanOthersReach(const QString& path) const
{
    // Not canonicalPath(), which belongs to the target of a link.
    QString folder = QFileInfo(QFileInfo(path).path()).canonicalFilePath();
    for (; folder.startsWith(u'/'); folder = QFileInfo(folder).path()) {
        const std::optional<Status> status = StatusOf(folder);
        const bool isOwn = status && (status->st_uid == m_user || status->st_uid == 0);
        if (isOwn && (status->st_mode & (S_IXGRP | S_IXOTH)) == 0)
            return false;
        if (folder == QLatin1String("/"))
            break;
    }
    return true;
}

/// Returns whether others can put something else in the place of `path`, which is in `folder`.
bool Access::CanOthersReplace(const QString& path, const Status& folder) const
{
    if (!CanOthersWrite(folder, m_user) || !CanOthersReach(path))
        return false;
    // In a sticky folder only the owners of the entry and of the folder can rename the entry.
    const bool isOwnersOnly = (folder.st_mode & S_ISVTX) != 0 && (folder.st_uid == m_user || folder.st_uid == 0);
    Status entry = {};
    return !isOwnersOnly || ::lstat(QFile::encodeName(path).constData(), &entry) != 0 ||
           (entry.st_uid != m_user && entry.st_uid != 0);
}

void Access::CheckConfiguration(const QString& directory)
{
    const QString written = QStringLiteral("OTHERS CAN WRITE ") + kConfiguration;
    Check(directory, written);
    QDirIterator all(directory, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    QStringList paths;
    while (all.hasNext())
        paths.append(all.next());
    paths.sort();
    for (const QString& path : std::as_const(paths))
        Check(path, written);
}

void Access::CheckTraceFiles(const QString& traceFile)
{
    if (traceFile.isEmpty())
        return;
    Check(traceFile, QStringLiteral("others can write it"));
    for (int number = 1; number <= RotatingFile::kBackupCount; ++number)
        Check(RotatingFile::BackupName(traceFile, number), QStringLiteral("others can write it"));
}

/// Adds a row if others can access `path`. `written` is its text if they can write it.
void Access::Check(const QString& path, const QString& written)
{
    const std::optional<Status> status = StatusOf(path);
    // Not devices, which everybody can use.
    if (!status || (!S_ISREG(status->st_mode) && !S_ISDIR(status->st_mode)))
        return;
    const bool isWritable = CanOthersWrite(*status, m_user);
    const mode_t others = IsGroupOfUser(status->st_gid, m_user) ? S_IRWXO : S_IRWXG | S_IRWXO;
    if (!isWritable && (status->st_mode & others) == 0)
        return;
    if (!CanOthersReach(path)) {
        m_others.append(Row(path, *status,
                            QStringLiteral("others could %1 it, but a folder above keeps them out")
                                .arg(QLatin1String(isWritable ? "write" : "read"))));
    } else if (isWritable) {
        m_dangerous.append(Row(path, *status, written));
    } else {
        m_others.append(Row(path, *status, QStringLiteral("others can read it")));
    }
}

QJsonArray Access::Row(const QString& path, const Status& status, const QString& text) const
{
    const bool isOwn = status.st_uid == m_user || status.st_uid == 0;
    return {path, QStringLiteral("%1").arg(status.st_mode & 07777U, 4, 8, QLatin1Char('0')),
            isOwn ? text : QStringLiteral("%1 (it belongs to user %2)").arg(text).arg(status.st_uid)};
}

/// Returns the user whom the configuration is for. Root may diagnose another user's.
uid_t UserOf(const QString& directory)
{
    const std::optional<Status> status = StatusOf(directory);
    return ::geteuid() == 0 && status ? status->st_uid : ::geteuid();
}

} // namespace

void ReportAccess(SupportReport& report, const QString& directory, const QString& traceFile)
{
    Access access(UserOf(directory));
    if (QFileInfo(directory).isDir()) {
        access.CheckFolders(directory);
        access.CheckConfiguration(directory);
    }
    access.CheckTraceFiles(traceFile);
    report.AddTable(QStringLiteral("access by others"),
                    {QStringLiteral("File"), QStringLiteral("Mode"), QStringLiteral("Access")}, access.Rows());
}
