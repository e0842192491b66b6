#include "host/notices.h"

#include "host/console.h"
#include "platform/standardstreams.h"

#include <utility>

void Notices::Say(const QString& line, const QString& shown)
{
    Console::Complain(line);
    ShowUnread(shown);
}

void Notices::ShowUnread(const QString& text)
{
    if (StandardStreams::IsRead(StandardStreams::Stream::Error))
        return;
    if (m_Show)
        m_Show(text);
    else
        m_Kept.append(text);
}

void Notices::ShowThrough(Show show)
{
    m_Show = std::move(show);
    if (m_Show && !m_Kept.isEmpty())
        m_Show(std::exchange(m_Kept, {}).join(QStringLiteral("\n\n")));
}
