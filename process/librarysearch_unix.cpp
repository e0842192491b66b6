#include "process/librarysearch.h"

void RestrictLibrarySearch()
{
}
