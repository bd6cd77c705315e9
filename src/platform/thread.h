// Starting, waiting for and slowing down a thread.
#pragma once

#include "native.h"

#include <cstdint>

namespace tesmor::platform {

// What a thread runs; `argument` is always null. Must not throw.
using ThreadEntry = std::uint32_t (*)(void* argument);

// The handle of a thread that createSuspendedThread made, or null for none. closeThread gives it back.
using ThreadHandle = NativeThread*;

// Creates a thread that does nothing until it is resumed. Does not block. Null when the system could not create it.
// On Linux the thread blocks the signals of its process, so that the host's handlers never run on it.
ThreadHandle createSuspendedThread(ThreadEntry entry) noexcept;

// Lets the thread run. Does not block. Returns the number of suspensions that it had (1). 0 when the system failed: the
// thread has ended without ever having run, and its handle is given back.
std::int32_t resumeThread(ThreadHandle thread) noexcept;

// Blocks until the thread has ended, without limit.
void waitForThread(ThreadHandle thread) noexcept;

// Gives the handle back; a thread that still runs goes on. Does not block. Nonzero when the system agreed.
std::int32_t closeThread(ThreadHandle thread) noexcept;

// Puts the calling thread at the system's idle priority for as long as the object lives, then restores the priority
// that it had. Where the process would not be allowed to come back from the idle priority, the thread is lowered as
// far as it may come back from; where it could not come back at all, it stays as it is. Does not block.
class IdlePriority {
public:
    IdlePriority() noexcept;
    ~IdlePriority();
    IdlePriority(const IdlePriority&) = delete;
    IdlePriority& operator=(const IdlePriority&) = delete;

private:
    NativePriority kept_;
};

} // namespace tesmor::platform
