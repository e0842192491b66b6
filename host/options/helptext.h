// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>

/// The parts of `--help` around the list of options.
namespace HelpText {

/// Returns the text before the options: what the host does.
QString Description();
/// Returns the text after the options: how they work together, and the exit codes.
QString Notes();

} // namespace HelpText
