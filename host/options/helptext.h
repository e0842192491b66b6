#pragma once

#include <QString>

/// What `--help` says beside the options themselves.
namespace HelpText {

/// Before the options: what the host does.
QString Description();
/// After them: how the options work together, and the exit codes.
QString Notes();

} // namespace HelpText
