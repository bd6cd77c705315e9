#include "frame/frame_hook.h"

#include "api/library.h"
#include "api/result_codes.h"
#include "frame/focus_measure.h"

#include <mutex>

namespace tesmor {

namespace {

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
    if (library.frameRequest.exchange(0) == 0)
        return;
    serveFrame(library.copyCommandBlock(), image, width, height);
}

} // namespace tesmor
