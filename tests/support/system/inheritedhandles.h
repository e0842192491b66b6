// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QStringList>

/// Describes the files, pipes and sockets that this process inherited, without the standard streams: one text each,
/// with the name if the system knows it. Call before anything is opened.
QStringList InheritedHandles();

/// The same, for a child process started now.
QStringList HandlesToInherit();
