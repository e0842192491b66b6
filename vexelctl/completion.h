// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>

/// Returns a script for bash that completes vexelctl's command line: commands, the options of each, files and folders.
QString BashCompletion();
