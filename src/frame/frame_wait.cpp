#include "frame/frame_wait.h"

#include "api/library.h"
#include "api/result_codes.h"
#include "platform/clock.h"

namespace tesmor {

namespace {

constexpr std::uint32_t ABORT_CHECK_MS = 128;
constexpr std::uint32_t FRAME_TIMEOUT_MS = 4000;

} // namespace

std::int32_t waitForFrame()
{
    library.frameEvent.reset();
    library.frameRequest = 1;
    const std::uint32_t start = platform::tickMilliseconds();
    while (library.runFlag != 0) {
        // A signal while the request still stands is that of an earlier, given-up request.
        if (library.frameEvent.waitFor(ABORT_CHECK_MS) && library.frameRequest == 0)
            break;
        if (platform::tickMilliseconds() - start > FRAME_TIMEOUT_MS) {
            library.runFlag = 0;
            library.frameRequest = 0;
            return NO_FRAME;
        }
    }
    if (library.runFlag != 0)
        return SUCCESS;
    library.frameRequest = 0;
    return ABORTED;
}

} // namespace tesmor
