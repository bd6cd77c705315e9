// SPDX-License-Identifier: GPL-2.0-or-later
// The autofocus: drives the focus motor to the position with the highest sharpness.
//
// A hill climb on two step sizes, all in motor steps:
//   1. Probe: samples at three coarse steps on either side of the start. The larger of the two end samples gives the
//      direction. Forward, the motor returns to the start and sweeps from there; in reverse it sweeps on from the far
//      end.
//   2. Coarse sweep: step by step in that direction, until two earlier samples are no smaller than the newest, or the
//      search range is used up. As long as sharpness keeps rising, the sweep goes on past its range. If it falls at the
//      very first comparison, the direction was wrong: two steps back, and another coarse sweep the other way.
//   3. Fine sweep: a fifth of the step, starting two coarse steps back and running on away from the turning point, by
//      the same rules.
//   4. Final move, back to the sharpest position of the last sweep; among equals, to the latest.
// Each sample is one move and the first frame after it. After any failure or abort, the motor stays where it is.
#pragma once

#include <cstdint>

namespace tesmor {

class FocusDrive;
class Frames;

// Returns TESMOR_SUCCESS, even if a frame came without a sharpness because another command was posted;
// TESMOR_MOVE_FAILED, TESMOR_ABORTED, TESMOR_NO_DRIVE or TESMOR_NO_FRAME.
std::int32_t autofocusSearch(FocusDrive& drive, Frames& frames, std::uint16_t magnification);

} // namespace tesmor
