// The autofocus: drives the focus motor to the position of greatest sharpness.
//
// A hill climb on two step sizes, all in motor steps:
//   1. Probe: samples at three coarse steps on either side of the start. The greater end sample gives the direction.
//      Forward, the motor returns to the start and sweeps from there; in reverse it sweeps on from the far end.
//   2. Coarse sweep: step by step in that direction, until two earlier samples are no smaller than the newest, or the
//      search range is used up. A sharpness that keeps rising carries the sweep past its range. When it falls at the
//      very first comparison the direction was wrong: two steps back, and another coarse sweep the other way.
//   3. Fine sweep: a fifth of the step, starting two coarse steps back and running on away from the turning point, by
//      the same rules.
//   4. Final move, back to the sharpest position of the last sweep; of equal ones to the latest.
// Each sample is one move and the first frame after it. The motor stays where it is on any failure or abort.
#pragma once

#include <cstdint>

namespace tesmor {

class FocusDrive;
class Frames;

// Returns TESMOR_SUCCESS, also when a frame came without a sharpness because another command was posted;
// TESMOR_MOVE_FAILED, TESMOR_ABORTED, TESMOR_NO_DRIVE or TESMOR_NO_FRAME.
std::int32_t autofocusSearch(FocusDrive& drive, Frames& frames, std::uint16_t magnification);

} // namespace tesmor
