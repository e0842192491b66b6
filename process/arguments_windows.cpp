#include "process/arguments.h"

QString ArgumentsError(int /*argc*/, char** /*argv*/)
{
    // Qt reads the command line as wide characters.
    return {};
}
