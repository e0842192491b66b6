#pragma once

#include <QtGlobal>

#include <memory>

/// While it lives, this process cannot make a file larger than `bytes`: what a full disk does to a writer.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(qint64 bytes);
    ~FileSizeLimit();
    Q_DISABLE_COPY_MOVE(FileSizeLimit)

private:
    struct Former;
    const std::unique_ptr<Former> m_former;
};
