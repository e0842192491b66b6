#include "process/librarysearch.h"

#include <windows.h>

void RestrictLibrarySearch()
{
    // Not SetDllDirectory: programs that are started by this one would inherit that.
    SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
}
