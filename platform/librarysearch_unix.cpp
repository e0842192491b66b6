#include "platform/librarysearch.h"

void SearchLibrariesHereOnly()
{
}
