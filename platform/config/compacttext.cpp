// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/config/compacttext.h"

#include <QLatin1StringView>

namespace {

constexpr qsizetype kLong = 1000; // characters; below that there is nothing to save

} // namespace

CompactText::CompactText(const QString& text)
{
    if (text.size() >= kLong) {
        m_latin1 = text.toLatin1();
        if (QLatin1StringView(m_latin1) == text)
            return;
        m_latin1.clear(); // it has other characters
    }
    m_text = text;
}

QString CompactText::Text() const
{
    return m_latin1.isEmpty() ? m_text : QString::fromLatin1(m_latin1);
}

bool CompactText::operator==(const QString& text) const
{
    return m_latin1.isEmpty() ? m_text == text : QLatin1StringView(m_latin1) == text;
}
