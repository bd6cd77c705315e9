// SPDX-License-Identifier: GPL-2.0-or-later
// Memory for large arrays, straight from the system and back to it.
#pragma once

#include <cstddef>

namespace tesmor::platform {

// Zeroed memory in whole pages, which nobody else gets a part of. Backed with large pages where the system gives them
// to programs that ask: they are faster to obtain and to walk through. Costs nothing until it is used. Does not block.
// Null when there is none to be had.
void* obtainPages(std::size_t bytes) noexcept;

// memory: from obtainPages with the same number of bytes, or null. Does not block; cannot fail.
void returnPages(void* memory, std::size_t bytes) noexcept;

} // namespace tesmor::platform
