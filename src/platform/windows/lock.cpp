// SPDX-License-Identifier: GPL-2.0-or-later
#include "platform/lock.h"

namespace tesmor::platform {

Lock::Lock() noexcept
{
    InitializeCriticalSection(&native_);
}

Lock::~Lock()
{
    DeleteCriticalSection(&native_);
}

void Lock::lock() noexcept
{
    EnterCriticalSection(&native_);
}

void Lock::unlock() noexcept
{
    LeaveCriticalSection(&native_);
}

} // namespace tesmor::platform
