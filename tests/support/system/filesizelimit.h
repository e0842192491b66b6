// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QtGlobal>

#include <memory>

/// Limits the size of files that this process writes to `bytes`, which acts like a full disk.
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
