// The one library of the process, because the exported functions have no handle to tell several by. For api/ alone.
#pragma once

#include "api/library.h"

namespace tesmor {

extern Library& library;

} // namespace tesmor
