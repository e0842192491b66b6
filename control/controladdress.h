// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>

/// Returns the address at which the host of `configDirectory`, an existing directory, listens: the path of a socket in
/// the user's runtime folder, or the name of a pipe that nobody else can guess. Empty if there is no such folder.
QString NewControlAddress(const QString& configDirectory);
