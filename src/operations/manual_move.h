// The manual focus move.
#pragma once

#include "tesmor.h"

namespace tesmor {

// Closes the drive of the manual move before, opens a new one that stays open in library.manualDrive, turns the focus
// by `angle` degrees (positive forward) and calls `doneCallback`, where there is one, with SUCCESS, MOVE_FAILED or
// NO_DRIVE. Worker thread only. What the callback throws passes through.
void manualMove(double angle, DoneCallback doneCallback, void* context);

} // namespace tesmor
