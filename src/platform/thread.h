// SPDX-License-Identifier: GPL-2.0-or-later
// Starting a thread and waiting for it.
#pragma once

#include "native.h"

#include <cstdint>

namespace tesmor::platform {

// What a thread runs; `argument` is always null. Must not throw.
using ThreadEntry = std::uint32_t (*)(void* argument);

// The handle of a thread that createSuspendedThread made, or null for none. closeThread gives it back.
using ThreadHandle = NativeThread*;

// Creates a thread that does nothing until it is resumed. Does not block. Null when the system could not create it.
// On Linux the thread blocks the signals of its process, so that the host's handlers do not run on it.
ThreadHandle createSuspendedThread(ThreadEntry entry) noexcept;

// Lets the thread run. Does not block. Returns the number of suspensions that it had (1). 0 when the system failed: the
// thread has ended without ever having run, and its handle is given back.
std::int32_t resumeThread(ThreadHandle thread) noexcept;

// Blocks until the thread has ended, without limit.
void waitForThread(ThreadHandle thread) noexcept;

// Gives the handle back; a thread that still runs goes on. Does not block. Nonzero when the system agreed.
std::int32_t closeThread(ThreadHandle thread) noexcept;

// As long as it lives, the calling thread, one that createSuspendedThread made, blocks the signals that its creator
// blocked then, and no more: so that what a callback of the host starts can be ended by signals. Nothing happens on
// other threads and on Windows. Does not block.
class CreatorSignals {
public:
    CreatorSignals() noexcept;
    ~CreatorSignals();
    CreatorSignals(const CreatorSignals&) = delete;
    CreatorSignals& operator=(const CreatorSignals&) = delete;

private:
    NativeSignals kept_;
};

} // namespace tesmor::platform
