// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>

/// `text` as one line that any terminal and any line-based tool takes: line breaks, control characters, invisible
/// direction marks and halves of characters are written as escapes (\n, \r, \t, \u{202e}).
QString OneLine(const QString& text);

/// `text` cut to at most `width` characters, the last one then being an ellipsis.
QString Elided(const QString& text, int width);

/// How many character cells `text` takes in a terminal, taking every visible character as one cell wide.
int CellCount(const QString& text);
