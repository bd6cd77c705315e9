// SPDX-License-Identifier: GPL-2.0-or-later
// Slowing down a thread.
#pragma once

#include "native.h"

namespace tesmor::platform {

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
