// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "userinterface/vexelconnectdlg/connection.h"

#include <QStringList>

#include <vector>

/// What changed from one list to another, by the names of the entries. A name appears once for each of its entries.
struct ListDifference
{
    QStringList added;   ///< in the order of the new list
    QStringList removed; ///< in the order of the old list
    QStringList changed; ///< in the order of the new list; anything but the status
};

/// Compares two lists in linear time. The order of the entries does not matter.
///
/// Names can repeat. Entries that are equal in both lists are matched first, then the others of the same name in their
/// order: those are changed entries, and what is left over was added or removed.
ListDifference Compare(const std::vector<Connection>& before, const std::vector<Connection>& after);
