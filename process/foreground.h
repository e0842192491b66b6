// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QtGlobal>

/// Allow another program to come to the foreground.
///
/// On Windows only the foreground program can pass on that right, and a program just launched by the user is in the
/// foreground. On other systems this does nothing: windows may activate themselves.

/// Allows the program `process`.
void AllowForegroundActivation(qint64 process);
/// Allows any program.
void AllowForegroundActivation();
