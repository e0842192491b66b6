// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QStringList>

#include <vector>

/// Formats `lines` as a table for a terminal: columns two blanks apart and as wide as their widest text, no trailing
/// blanks. All lines must have as many texts as the first. Ends with a line break unless `lines` is empty.
QString TextTable(const std::vector<QStringList>& lines);
