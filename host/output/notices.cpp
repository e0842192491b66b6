// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/output/notices.h"

#include "host/output/console.h"
#include "process/standardstreams.h"

#include <utility>

void Notices::Report(const QString& line, const QString& shown)
{
    Console::PrintError(line);
    ShowIfUnread(shown);
}

void Notices::ShowIfUnread(const QString& text)
{
    if (StandardStreams::HasReader(StandardStreams::Stream::Error))
        return;
    if (m_display)
        m_display(text);
    else
        m_pending.append(text);
}

void Notices::SetDisplay(Display display)
{
    m_display = std::move(display);
    if (m_display && !m_pending.isEmpty())
        m_display(std::exchange(m_pending, {}).join(QStringLiteral("\n\n")));
}
