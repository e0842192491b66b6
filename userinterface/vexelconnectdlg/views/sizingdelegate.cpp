// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "userinterface/vexelconnectdlg/views/sizingdelegate.h"

#include <algorithm>

QSize SizingDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const QSize size = ConnectionsDelegate::sizeHint(option, index);
    int& width = m_widths.at(static_cast<std::size_t>(index.column()));
    width = std::max(width, size.width());
    m_height = std::max(m_height, size.height());
    return {width, m_height};
}

void SizingDelegate::ForgetWidths()
{
    m_widths.fill(0);
}

void SizingDelegate::ForgetRowHeight()
{
    m_height = 0;
}
