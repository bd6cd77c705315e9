#include "operations/manual_move.h"

#include "api/library.h"
#include "drive/focus_drive.h"
#include "session/result_codes.h"

#include <new>

namespace tesmor {

namespace {

constexpr std::int32_t STEPS_PER_TURN = 12800;

// Truncated toward zero. The step count must fit 32 bits.
std::int32_t stepsOfAngle(double angle) noexcept
{
    return static_cast<std::int32_t>(angle * STEPS_PER_TURN / 360.0);
}

std::int32_t turnFocus(double angle) noexcept
{
    library.manualDrive.reset();
    library.manualDrive.reset(new (std::nothrow) FocusDrive);
    if (!library.manualDrive || !library.manualDrive->hasDevice())
        return NO_DRIVE;
    return library.manualDrive->moveBy(stepsOfAngle(angle)) ? SUCCESS : MOVE_FAILED;
}

} // namespace

void manualMove(double angle, DoneCallback doneCallback, void* context)
{
    const std::int32_t result = turnFocus(angle);
    if (doneCallback)
        doneCallback(context, result);
}

} // namespace tesmor
