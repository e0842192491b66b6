// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/config/compacttext.h"

#include <QLatin1StringView>

#include <utility>

namespace {

constexpr qsizetype kLong = 1000; // characters; below that there is nothing to save

} // namespace

CompactText::CompactText(QString text)
    : m_text(std::move(text))
{
}

void CompactText::Compact()
{
    if (m_text.size() < kLong)
        return;
    m_latin1 = m_text.toLatin1();
    if (QLatin1StringView(m_latin1) == m_text)
        m_text.clear();
    else // it has other characters
        m_latin1.clear();
}

QString CompactText::Text() const
{
    return m_latin1.isEmpty() ? m_text : QString::fromLatin1(m_latin1);
}

bool CompactText::operator==(const QString& text) const
{
    return m_latin1.isEmpty() ? m_text == text : QLatin1StringView(m_latin1) == text;
}
