// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/link/handlelimit.h"

#include <QtGlobal>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

/// Sets the number of handles that this process may have; returns what it was.
unsigned long SetLimit(unsigned long count)
{
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0)
        qFatal("No limit to be had");
    const auto former = limit.rlim_cur;
    limit.rlim_cur = count;
    if (setrlimit(RLIMIT_NOFILE, &limit) != 0)
        qFatal("No limit to be set");
    return former;
}

} // namespace

NoMoreHandles::NoMoreHandles()
{
    // The lowest free handle is the next that would be given.
    const int next = open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (next < 0)
        qFatal("No handle to be had");
    close(next);
    m_uFormerLimit = SetLimit(static_cast<unsigned long>(next));
}

NoMoreHandles::~NoMoreHandles()
{
    SetLimit(m_uFormerLimit);
}
