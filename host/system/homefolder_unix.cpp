// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/system/homefolder.h"

#include <QByteArray>

#include <pwd.h>
#include <unistd.h>

namespace {

/// Returns why the folder in the variable `name` cannot be used; empty if it can.
QString FolderError(const char* name)
{
    const QByteArray folder = qgetenv(name);
    if (folder.startsWith('/') && folder.isValidUtf8())
        return {};
    return QStringLiteral("%1 is not an absolute path in UTF-8: \"%2\"")
        .arg(QLatin1String(name), QString::fromUtf8(folder));
}

} // namespace

QString PrepareHomeFolder()
{
    // Qt would use the current directory for a relative path, and the root directory without a home.
    if (!qEnvironmentVariableIsEmpty("XDG_CONFIG_HOME"))
        return FolderError("XDG_CONFIG_HOME");
    if (qEnvironmentVariableIsEmpty("HOME")) {
        const passwd* const user = ::getpwuid(::geteuid());
        if (!user || QByteArray(user->pw_dir).isEmpty())
            return QStringLiteral("HOME is not set, and the user database has no home directory for this user");
        qputenv("HOME", user->pw_dir);
    }
    return FolderError("HOME");
}
