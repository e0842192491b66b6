// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/cfgcenter.h"

/// Returns false if two contents of a document are equal but for the statuses of the stored entries, which need no
/// version: they change with every "Connect" and are not restored. For `CfgCenter::SetVersionFilter`. Any thread;
/// linear time.
bool DiffersInMoreThanStatuses(const ConfigValues& before, const ConfigValues& after);
