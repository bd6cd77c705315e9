#include "operations/stack_capture.h"

#include "api/library.h"
#include "drive/focus_drive.h"
#include "frames/frame_wait.h"
#include "session/result_codes.h"

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

template <class Report>
std::int32_t captureSlices(FocusDrive& drive, std::int32_t stepsPerSlice, std::uint16_t sliceCount, bool notifyOnly,
                           Report report)
{
    if (!drive.hasDevice())
        return NO_DRIVE;
    for (std::uint32_t slice = 0; slice < sliceCount; ++slice) {
        if (!drive.moveBy(stepsPerSlice))
            return MOVE_FAILED;
        if (notifyOnly) {
            report(SUCCESS);
        } else if (const std::int32_t waited = waitForFrame(); waited != SUCCESS) {
            return waited;
        }
    }
    for (std::uint32_t slice = 0; slice < sliceCount; ++slice) {
        if (!drive.moveBy(wrappingNegation(stepsPerSlice)))
            return MOVE_FAILED;
    }
    return STACK_DONE;
}

} // namespace

void captureStack(std::uint16_t magnification, std::uint16_t sliceCount, std::int32_t sliceSpacing,
                  std::uint32_t notifyOnly, FrameCallback frameCallback, void* context)
{
    const auto report = [=](std::int32_t result) { frameCallback(nullptr, 0, 0, context, result); };
    library.manualDrive.reset();
    FocusDrive drive; // still open while the result is reported
    const std::int32_t stepsPerSlice = wrappingProduct(stepUnit(magnification), sliceSpacing);
    report(captureSlices(drive, stepsPerSlice, sliceCount, notifyOnly != 0, report));
}

} // namespace tesmor
