#pragma once

#include <QFileInfo>

#include <filesystem>
#include <system_error>

/// Whether something stands in the place of the file `path` that is no file, such as a folder, a device, a pipe, or a
/// link to nothing. It must not be opened as a file: a pipe keeps whoever opens it waiting for its other end.
inline bool IsNotRegularFile(const QString& path)
{
    // Of a file this is asked once: a lock of another process may come or go between two questions.
    using std::filesystem::file_type;
    const std::filesystem::path place = QFileInfo(path).filesystemFilePath();
    std::error_code error;
    const file_type type = std::filesystem::symlink_status(place, error).type();
    if (type == file_type::symlink)
        return !std::filesystem::is_regular_file(place, error);
    return type != file_type::regular && type != file_type::not_found && type != file_type::none;
}
