#pragma once

/// Allows the called program to come to the foreground.
///
/// On Windows only the foreground program can pass on that right, and a starter just launched by the user is in the
/// foreground. On other systems this does nothing: windows may activate themselves.
void AllowForegroundActivation();
