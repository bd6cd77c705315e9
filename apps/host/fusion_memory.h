// How much memory there is.
#pragma once

#include <cstdint>
#include <optional>

namespace tesmor::apps {

// Bytes that programs can still take without swapping; none where the system does not tell.
std::optional<std::uint64_t> availableMemory();

} // namespace tesmor::apps
