#include "frames/frame_wait.h"

#include "api/library.h"
#include "platform/clock.h"
#include "session/result_codes.h"

namespace tesmor {

namespace {

constexpr std::uint32_t ABORT_CHECK_MS = 128;
constexpr std::uint32_t FRAME_TIMEOUT_MS = 4000;

} // namespace

std::int32_t waitForFrame()
{
    library.frameEvent.reset();
    const std::uint32_t thisWait = ++library.frameWait;
    library.frameRequest = 1;
    const std::uint32_t start = platform::tickMilliseconds();
    while (library.runFlag != 0) {
        // The signal may be that of an earlier wait, which gave up while its frame was being served.
        if (library.frameEvent.waitFor(ABORT_CHECK_MS) && library.servedWait == thisWait)
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
