// SPDX-License-Identifier: GPL-2.0-or-later
#include "platform/lock.h"

namespace tesmor::platform {

Lock::Lock() noexcept : native_(PTHREAD_MUTEX_INITIALIZER) {}

Lock::~Lock()
{
    pthread_mutex_destroy(&native_);
}

void Lock::lock() noexcept
{
    pthread_mutex_lock(&native_);
}

void Lock::unlock() noexcept
{
    pthread_mutex_unlock(&native_);
}

} // namespace tesmor::platform
