// A hint about memory.
#pragma once

#include <cstddef>

namespace tesmor::platform {

// Asks the system to back an array with large pages, which are faster to obtain and to walk through. Before the array is
// first used; nothing happens to small arrays, and where the system has no such pages for everybody. Does not block;
// cannot fail.
void preferLargePages(void* memory, std::size_t bytes) noexcept;

} // namespace tesmor::platform
