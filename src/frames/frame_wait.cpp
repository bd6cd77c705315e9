// SPDX-License-Identifier: GPL-2.0-or-later
#include "frames/frame_wait.h"

#include "platform/clock.h"
#include "session/session.h"

namespace tesmor {

namespace {

constexpr std::uint32_t ABORT_CHECK_MS = 128;
constexpr std::uint32_t FRAME_TIMEOUT_MS = 4000;

} // namespace

FrameReply FrameWait::next()
{
    if (const std::int32_t result = wait(); result != TESMOR_SUCCESS)
        return {result, std::nullopt};
    std::lock_guard guard(session_.commandLock);
    if (session_.commandBlock.command != CMD_AUTOFOCUS)
        return {TESMOR_SUCCESS, std::nullopt};
    return {TESMOR_SUCCESS, session_.commandBlock.focusValue};
}

std::int32_t FrameWait::wait()
{
    session_.frameEvent.reset();
    const std::uint32_t thisWait = ++session_.frameWait;
    session_.frameRequest = 1;
    const std::uint32_t start = clock_.tickMilliseconds();
    while (session_.runFlag != 0) {
        // The signal may belong to an earlier wait that gave up while its frame was being served.
        if (clock_.waitFor(session_.frameEvent, ABORT_CHECK_MS) && session_.servedWait == thisWait)
            break;
        if (clock_.tickMilliseconds() - start > FRAME_TIMEOUT_MS) {
            session_.runFlag = 0;
            session_.frameRequest = 0;
            return TESMOR_NO_FRAME;
        }
    }
    if (session_.runFlag != 0)
        return TESMOR_SUCCESS;
    session_.frameRequest = 0;
    return TESMOR_ABORTED;
}

} // namespace tesmor
