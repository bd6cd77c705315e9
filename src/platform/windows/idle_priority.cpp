// SPDX-License-Identifier: GPL-2.0-or-later
#include "platform/idle_priority.h"

namespace tesmor::platform {

IdlePriority::IdlePriority() noexcept : kept_(GetThreadPriority(GetCurrentThread()))
{
    SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_IDLE); // -15
}

IdlePriority::~IdlePriority()
{
    SetThreadPriority(GetCurrentThread(), kept_);
}

} // namespace tesmor::platform
