// SPDX-License-Identifier: GPL-2.0-or-later
// The only library of the process, since the exported functions take no handle. Only for api/.
#pragma once

#include "api/library.h"

namespace tesmor {

extern Library& library;

} // namespace tesmor
