// SPDX-License-Identifier: GPL-2.0-or-later
// The library as if it had just been loaded into this program.
#pragma once

#include "api/library.h"

namespace tesmor::bench {

inline Session& loadedSession()
{
    static Library& library = setUpLibrary(nullptr, platform::systemDriveUnits(), platform::systemClock());
    return library.session;
}

} // namespace tesmor::bench
