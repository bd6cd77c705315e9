#include "frame/frame_hook.h"

#include "api/library.h"
#include "api/result_codes.h"
#include "frame/focus_measure.h"

#include <mutex>
#include <optional>

namespace tesmor {

namespace {

// The command that waits for a frame. Request and command are taken at once: a request that its command gives up
// meanwhile must not be served for the command that is posted next.
std::optional<CommandBlock> takeRequest() noexcept
{
    std::lock_guard guard(library.commandLock);
    if (library.frameRequest.exchange(0) == 0)
        return std::nullopt;
    return library.commandBlock;
}

void serveFrame(const CommandBlock& block, const std::uint8_t* image, std::int32_t width, std::int32_t height)
{
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
    library.frameEvent.set();
}

} // namespace

void handleFrame(const std::uint8_t* image, std::int32_t width, std::int32_t height)
{
    if (library.frameRequest.load(std::memory_order_relaxed) == 0)
        return;
    if (const std::optional<CommandBlock> block = takeRequest())
        serveFrame(*block, image, width, height);
}

} // namespace tesmor
