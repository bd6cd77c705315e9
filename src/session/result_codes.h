// The result codes of tesmor.h under the names that the library's own code uses.
#pragma once

#include "tesmor.h"

#include <cstdint>

namespace tesmor {

inline constexpr std::int32_t STACK_DONE = TESMOR_STACK_DONE;
inline constexpr std::int32_t SUCCESS = TESMOR_SUCCESS;
inline constexpr std::int32_t MOVE_FAILED = TESMOR_MOVE_FAILED;
inline constexpr std::int32_t NO_MEMORY = TESMOR_NO_MEMORY;
inline constexpr std::int32_t ABORTED = TESMOR_ABORTED;
inline constexpr std::int32_t NO_DRIVE = TESMOR_NO_DRIVE;
inline constexpr std::int32_t NO_FRAME = TESMOR_NO_FRAME;

} // namespace tesmor
