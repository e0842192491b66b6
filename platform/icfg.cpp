#include "platform/icfg.h"

// Here so that the class's type information stands in this library only.
ICfg::~ICfg() = default;
