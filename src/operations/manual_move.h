// SPDX-License-Identifier: GPL-2.0-or-later
// The manual focus move.
#pragma once

#include <cstdint>

namespace tesmor {

class FocusDrive;

// Turns the focus by `angle` degrees, positive forward. Returns TESMOR_SUCCESS, TESMOR_MOVE_FAILED or TESMOR_NO_DRIVE.
// The step count must fit in 32 bits. Never throws.
std::int32_t manualMove(FocusDrive& drive, double angle) noexcept;

} // namespace tesmor
