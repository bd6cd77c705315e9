// SPDX-License-Identifier: GPL-2.0-or-later
#include "platform/memory.h"

#include "native.h"

namespace tesmor::platform {

// Large pages need a privilege that hosts do not have.
void* obtainPages(std::size_t bytes) noexcept
{
    return VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
}

void returnPages(void* memory, std::size_t) noexcept
{
    if (memory)
        VirtualFree(memory, 0, MEM_RELEASE);
}

} // namespace tesmor::platform
