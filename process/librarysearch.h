#pragma once

/// Lets Windows look for libraries in the program's own folder and among its own only, and neither in the current
/// folder nor along the PATH, where someone may have put others under the same names. Call it before anything is
/// loaded. Elsewhere nothing is needed: programs name the folders themselves.
void RestrictLibrarySearch();
