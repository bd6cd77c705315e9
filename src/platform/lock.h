// SPDX-License-Identifier: GPL-2.0-or-later
// A mutual-exclusion lock, for std::lock_guard. Not recursive.
#pragma once

#include "native.h"

namespace tesmor::platform {

class Lock {
public:
    Lock() noexcept;
    ~Lock();
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    // Blocks until the lock is free.
    void lock() noexcept;
    void unlock() noexcept;

private:
    NativeLock native_;
};

} // namespace tesmor::platform
