#include "platform/librarysearch.h"

#include <windows.h>

void SearchLibrariesHereOnly()
{
    // The first for whoever asks for the search order of old.
    SetDllDirectoryW(L"");
    SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
}
