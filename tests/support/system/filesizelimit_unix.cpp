// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/system/filesizelimit.h"

#include <csignal>
#include <sys/resource.h>

struct FileSizeLimit::Former
{
    rlimit limit{};
    void (*handler)(int) = nullptr;
};

FileSizeLimit::FileSizeLimit(qint64 bytes)
    : m_former(std::make_unique<Former>())
{
    getrlimit(RLIMIT_FSIZE, &m_former->limit);
    // Otherwise a larger file terminates the process. Child processes inherit an ignored signal.
    m_former->handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit = m_former->limit;
    limit.rlim_cur = static_cast<rlim_t>(bytes);
    setrlimit(RLIMIT_FSIZE, &limit);
}

FileSizeLimit::~FileSizeLimit()
{
    setrlimit(RLIMIT_FSIZE, &m_former->limit);
    std::signal(SIGXFSZ, m_former->handler);
}
