// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/system/errorsto.h"

#include <QFile>

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

ErrorsTo::ErrorsTo(const QString& file)
{
    (void)std::fflush(stderr);
    m_former = ::dup(STDERR_FILENO);
    m_file = ::open(QFile::encodeName(file).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    ::dup2(static_cast<int>(m_file), STDERR_FILENO);
}

ErrorsTo::~ErrorsTo()
{
    (void)std::fflush(stderr);
    ::dup2(static_cast<int>(m_former), STDERR_FILENO);
    ::close(static_cast<int>(m_former));
    ::close(static_cast<int>(m_file));
}
