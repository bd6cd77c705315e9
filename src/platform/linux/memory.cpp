#include "platform/memory.h"

#include <cstdint>
#include <sys/mman.h>
#include <unistd.h>

namespace tesmor::platform {

void preferLargePages(void* memory, std::size_t bytes) noexcept
{
    constexpr std::size_t worthwhile = 4 << 20;
    if (memory == nullptr || bytes < worthwhile)
        return;
    const auto pageSize = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto start = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t firstPage = (start + pageSize - 1) / pageSize * pageSize;
    const std::uintptr_t endPage = (start + bytes) / pageSize * pageSize;
    madvise(static_cast<char*>(memory) + (firstPage - start), endPage - firstPage, MADV_HUGEPAGE);
}

} // namespace tesmor::platform
