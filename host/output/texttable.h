#pragma once

#include <QStringList>

#include <vector>

/// `lines` as a table for a terminal: columns as wide as their widest text and two blanks apart, one line each, no
/// blanks at the end of a line. All lines have as many texts as the first. Ends with a line break, unless there is no
/// line.
QString TextTable(const std::vector<QStringList>& lines);
