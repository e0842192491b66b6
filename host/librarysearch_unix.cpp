#include "host/librarysearch.h"

void SearchLibrariesHereOnly()
{
}
