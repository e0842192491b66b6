#pragma once

#include <sys/stat.h>

/// Returns whether users other than `user` and root can write the file, or create and rename files in the folder, with
/// this status. True also if they own it, since they can then change its mode.
inline bool CanOthersWrite(const struct stat& status, uid_t user)
{
    return (status.st_mode & (S_IWGRP | S_IWOTH)) != 0 || (status.st_uid != user && status.st_uid != 0);
}
