// SPDX-License-Identifier: GPL-2.0-or-later
#include "frames/frame_hook.h"

#include "measure/focus_measure.h"

#include <optional>

namespace tesmor {

namespace {

struct Request {
    CommandBlock block;
    std::uint32_t wait;
};

// Request, command and wait number are taken under one lock, as a post takes it, too: a request that its command has
// given up must not be served for the command posted next.
std::optional<Request> takeRequest(Session& session) noexcept
{
    std::lock_guard guard(session.commandLock);
    if (session.frameRequest.exchange(0) == 0)
        return std::nullopt;
    return Request{session.commandBlock, session.frameWait};
}

} // namespace

void serveFrame(Session& session, const std::uint8_t* image, std::int32_t width, std::int32_t height)
{
    const std::optional<Request> request = takeRequest(session);
    if (!request)
        return;
    const CommandBlock& block = request->block;
    switch (block.command) {
    case CMD_STACK:
    case CMD_CAPTURE:
        block.frameCallback(image, width, height, block.context, TESMOR_SUCCESS);
        break;
    case CMD_AUTOFOCUS: {
        const double focusValue = measureFocus(image, width, height, block.magnification, session.lumaTables);
        std::lock_guard guard(session.commandLock);
        session.commandBlock.focusValue = focusValue;
        break;
    }
    default:
        return;
    }
    session.servedWait = request->wait;
    session.frameEvent.set();
}

} // namespace tesmor
