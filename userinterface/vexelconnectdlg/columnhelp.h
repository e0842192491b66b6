#pragma once

#include <QVariant>

/// The help text of column `section` of the connections table, for tool tips and the status bar; invalid for a section
/// outside the table.
QVariant ConnectionsColumnHelp(int section);
