// SPDX-License-Identifier: GPL-2.0-or-later
#include "operations/stack_capture.h"

#include "drive/focus_drive.h"
#include "frames/frames.h"
#include "tesmor.h"

namespace tesmor {

namespace {

// Motor steps per spacing unit. 80 takes the default, although the focus measure counts it among the high ones.
std::int32_t stepUnit(std::uint16_t magnification) noexcept
{
    switch (magnification) {
    case 4:
        return 200;
    case 10:
        return 120;
    case 20:
        return 96;
    case 40:
    case 60:
    case 100:
        return 48;
    default:
        return 100;
    }
}

std::int32_t wrappingProduct(std::int32_t a, std::int32_t b) noexcept
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

std::int32_t wrappingNegation(std::int32_t a) noexcept
{
    return static_cast<std::int32_t>(0u - static_cast<std::uint32_t>(a));
}

} // namespace

std::int32_t captureStack(FocusDrive& drive, Frames& frames, const StackPlan& plan,
                          const std::function<void()>& onMoved)
{
    if (!drive.hasDevice())
        return TESMOR_NO_DRIVE;
    const std::int32_t stepsPerSlice = wrappingProduct(stepUnit(plan.magnification), plan.sliceSpacing);
    for (std::uint32_t slice = 0; slice < plan.sliceCount; ++slice) {
        if (!drive.moveBy(stepsPerSlice))
            return TESMOR_MOVE_FAILED;
        if (plan.notifyOnly)
            onMoved();
        else if (const std::int32_t result = frames.next().result; result != TESMOR_SUCCESS)
            return result;
    }
    for (std::uint32_t slice = 0; slice < plan.sliceCount; ++slice) {
        if (!drive.moveBy(wrappingNegation(stepsPerSlice)))
            return TESMOR_MOVE_FAILED;
    }
    return TESMOR_STACK_DONE;
}

} // namespace tesmor
