#include "platform/memory.h"

namespace tesmor::platform {

// Large pages need a privilege that hosts do not have.
void preferLargePages(void*, std::size_t) noexcept {}

} // namespace tesmor::platform
