// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QTcpSocket>

/// Lets the connection of `socket` end on this side without a word to the other, as when a machine loses its power.
/// False, and nothing done, where the system or the rights of this process do not allow that.
bool Vanish(QTcpSocket& socket);
