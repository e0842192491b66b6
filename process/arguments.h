// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>

/// Returns why the arguments of main() cannot be used: Qt would replace bytes that are not UTF-8, so a path would
/// become the name of another file. Empty if they can, and on systems that pass text.
QString ArgumentsError(int argc, char** argv);
