// SPDX-License-Identifier: GPL-2.0-or-later
// What the seam's objects are made of on Windows.
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

namespace tesmor::platform {

using NativeLock = CRITICAL_SECTION;

using NativeEvent = HANDLE;

// A ThreadHandle is a HANDLE.
using NativeThread = void;

struct NativeSignals {};

using NativePriority = int;

// The library's own module, as the loader knows it.
using ModuleHandle = void*;

} // namespace tesmor::platform
