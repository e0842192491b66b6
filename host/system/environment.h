#pragma once

#include <QString>

/// The environment variables of this process, which what it starts inherits. Names of files arrive whole, with whatever
/// letters: as the bytes that they consist of on Unix, in wide characters on Windows.
namespace Environment {

void Set(const char* name, const QString& value);

/// Puts `folder` before those that the variable lists.
void Prepend(const char* name, const QString& folder);

} // namespace Environment
