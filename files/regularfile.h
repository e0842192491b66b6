#pragma once

#include <QFileInfo>

#include <filesystem>
#include <system_error>

/// Returns whether `path` exists but is not a regular file: a folder, a device, a pipe or a dangling link. It must not
/// be opened as a file: opening a pipe blocks until its other end is opened.
inline bool IsNotRegularFile(const QString& path)
{
    // One query only: another process's lock file may come or go between two.
    using std::filesystem::file_type;
    const std::filesystem::path place = QFileInfo(path).filesystemFilePath();
    std::error_code error;
    const file_type type = std::filesystem::symlink_status(place, error).type();
    if (type == file_type::symlink)
        return !std::filesystem::is_regular_file(place, error);
    return type != file_type::regular && type != file_type::not_found && type != file_type::none;
}
