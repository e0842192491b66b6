// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "userinterface/vexelconnectdlg/connectionsdelegate.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"

#include <array>

/// A `ConnectionsDelegate` whose size hints do not shrink.
///
/// Each size hint is at least as high as the highest cell and at least as wide as the widest cell of its column that a
/// view has measured so far. So all views with this delegate give their rows the same height, and columns do not become
/// narrower while the operator scrolls.
class SizingDelegate : public ConnectionsDelegate
{
public:
    using ConnectionsDelegate::ConnectionsDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    /// The largest height so far, in pixels; 0 if no cell has been measured.
    int RowHeight() const { return m_height; }
    void ForgetWidths();
    void ForgetRowHeight();

private:
    mutable std::array<int, ConnectionsModel::kColumnCount> m_widths{};
    mutable int m_height = 0;
};
