// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>

/// Sets environment variables of this process, which child processes inherit. File names with any characters survive:
/// they are passed as bytes on Unix and as wide characters on Windows.
namespace Environment {

void Set(const char* name, const QString& value);

/// Inserts `folder` at the beginning of the list in the variable.
void Prepend(const char* name, const QString& folder);

} // namespace Environment
