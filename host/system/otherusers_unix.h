// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <cstring>

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>

/// Returns whether `group` is the one that many systems create for each user, with the user's name.
inline bool IsGroupOfUser(gid_t group, uid_t user)
{
    const struct passwd* const entry = ::getpwuid(user);
    const struct group* const named = entry && entry->pw_gid == group ? ::getgrgid(group) : nullptr;
    return named && std::strcmp(named->gr_name, entry->pw_name) == 0;
}

/// Returns whether users other than `user` and root can write the file, or create and rename files in the folder, with
/// this status. True also if they own it, since they can then change its mode.
inline bool CanOthersWrite(const struct stat& status, uid_t user)
{
    const bool canGroupWrite = (status.st_mode & S_IWGRP) != 0 && !IsGroupOfUser(status.st_gid, user);
    return canGroupWrite || (status.st_mode & S_IWOTH) != 0 || (status.st_uid != user && status.st_uid != 0);
}
