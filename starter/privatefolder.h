// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>

/// Creates the folder `path` if it does not exist. Returns whether it belongs to this user alone, so that nobody else
/// can put files there.
bool EnsurePrivateFolder(const QString& path);
