// SPDX-License-Identifier: GPL-2.0-or-later
#include "operations/manual_move.h"

#include "drive/focus_drive.h"
#include "tesmor.h"

namespace tesmor {

std::int32_t manualMove(FocusDrive& drive, double angle) noexcept
{
    constexpr std::int32_t STEPS_PER_TURN = 12800;
    if (!drive.hasDevice())
        return TESMOR_NO_DRIVE;
    const auto steps = static_cast<std::int32_t>(angle * STEPS_PER_TURN / 360.0); // toward zero
    return drive.moveBy(steps) ? TESMOR_SUCCESS : TESMOR_MOVE_FAILED;
}

} // namespace tesmor
