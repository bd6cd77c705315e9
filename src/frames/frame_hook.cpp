#include "frames/frame_hook.h"

#include "api/library.h"
#include "measure/focus_measure.h"
#include "session/result_codes.h"

#include <mutex>
#include <optional>

namespace tesmor {

namespace {

struct Request {
    CommandBlock block;
    std::uint32_t wait;
};

// Request, command and number of the wait are taken at once: a request that its command gives up meanwhile must not be
// served for the command that is posted next, which takes the lock, too.
std::optional<Request> takeRequest() noexcept
{
    std::lock_guard guard(library.commandLock);
    if (library.frameRequest.exchange(0) == 0)
        return std::nullopt;
    return Request{library.commandBlock, library.frameWait};
}

void serveFrame(const Request& request, const std::uint8_t* image, std::int32_t width, std::int32_t height)
{
    const CommandBlock& block = request.block;
    switch (block.command) {
    case CMD_STACK:
    case CMD_CAPTURE:
        block.frameCallback(image, width, height, block.context, SUCCESS);
        break;
    case CMD_AUTOFOCUS: {
        const double focusValue = measureFocus(image, width, height, block.magnification, library.lumaTables);
        std::lock_guard guard(library.commandLock);
        library.commandBlock.focusValue = focusValue;
        break;
    }
    default:
        return;
    }
    library.servedWait = request.wait;
    library.frameEvent.set();
}

} // namespace

void handleFrame(const std::uint8_t* image, std::int32_t width, std::int32_t height)
{
    if (library.frameRequest.load(std::memory_order_relaxed) == 0)
        return;
    if (const std::optional<Request> request = takeRequest())
        serveFrame(*request, image, width, height);
}

} // namespace tesmor
