// SPDX-License-Identifier: GPL-2.0-or-later
#include "platform/memory.h"

#include <sys/mman.h>

namespace tesmor::platform {

void* obtainPages(std::size_t bytes) noexcept
{
    void* memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        return nullptr;
    constexpr std::size_t worthwhile = 4 << 20;
    if (bytes >= worthwhile)
        madvise(memory, bytes, MADV_HUGEPAGE); // a wish, which may be refused
    return memory;
}

void returnPages(void* memory, std::size_t bytes) noexcept
{
    if (memory)
        munmap(memory, bytes);
}

} // namespace tesmor::platform
