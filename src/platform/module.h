// SPDX-License-Identifier: GPL-2.0-or-later
// The library as the system loads it.
#pragma once

#include "native.h"

namespace tesmor::platform {

// Called once a process, when the library is loaded into it and before anything else of the library runs. Not the
// platform's: whoever uses the platform defines it.
void onLoad(ModuleHandle module);

} // namespace tesmor::platform
