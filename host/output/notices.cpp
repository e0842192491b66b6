#include "host/output/notices.h"

#include "host/output/console.h"
#include "process/standardstreams.h"

#include <utility>

void Notices::Say(const QString& line, const QString& shown)
{
    Console::PrintError(line);
    ShowUnread(shown);
}

void Notices::ShowUnread(const QString& text)
{
    if (StandardStreams::IsRead(StandardStreams::Stream::Error))
        return;
    if (m_show)
        m_show(text);
    else
        m_kept.append(text);
}

void Notices::ShowThrough(Show show)
{
    m_show = std::move(show);
    if (m_show && !m_kept.isEmpty())
        m_show(std::exchange(m_kept, {}).join(QStringLiteral("\n\n")));
}
