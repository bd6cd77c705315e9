#include "worker/worker.h"

#include "api/library.h"
#include "drive/focus_drive.h"
#include "frames/frame_wait.h"
#include "fusion/fuse_images.h"
#include "operations/autofocus_search.h"
#include "operations/manual_move.h"
#include "operations/stack_capture.h"
#include "platform/thread.h"

namespace tesmor {

namespace {

class BusyScope {
public:
    BusyScope() noexcept
    {
        library.busyFlag = 1;
    }
    ~BusyScope()
    {
        library.busyFlag = 0;
    }
    BusyScope(const BusyScope&) = delete;
    BusyScope& operator=(const BusyScope&) = delete;
};

void runAutofocus(const CommandBlock& block)
{
    const std::int32_t result = autofocusSearch(block.magnification);
    block.doneCallback(block.context, result);
}

void runStack(const CommandBlock& block)
{
    captureStack(block.magnification, block.sliceCount, block.sliceSpacing, block.notifyOnly, block.frameCallback,
                 block.context);
}

std::int32_t fuseAtIdlePriority(const CommandBlock& block)
{
    platform::IdlePriority idlePriority;
    return fuseImages(block.images.data(), block.imageCount, block.width, block.height, block.output, library.runFlag,
                      [&block](std::int32_t percent) { block.frameCallback(nullptr, 0, 0, block.context, percent); });
}

void runFusion(const CommandBlock& block)
{
    const std::int32_t result = fuseAtIdlePriority(block);
    block.frameCallback(block.output, static_cast<std::int32_t>(block.width), static_cast<std::int32_t>(block.height),
                        block.context, result);
}

void runCommand(const CommandBlock& block)
{
    switch (block.command) {
    case CMD_AUTOFOCUS: {
        BusyScope busy;
        runAutofocus(block);
        break;
    }
    case CMD_MANUAL: {
        BusyScope busy;
        manualMove(block.angle, block.doneCallback, block.context);
        break;
    }
    case CMD_STACK: {
        BusyScope busy;
        runStack(block);
        break;
    }
    case CMD_CAPTURE: {
        BusyScope busy;
        waitForFrame();
        break;
    }
    case CMD_FUSION: {
        BusyScope busy;
        runFusion(block);
        break;
    }
    case CMD_RESET:
        library.manualDrive.reset();
        break;
    default:
        break;
    }
}

void runCommandSafely(const CommandBlock& block) noexcept
{
    try {
        runCommand(block);
    } catch (...) {
        // A host callback threw; the scopes that it left are undone, and the worker goes on.
    }
}

CommandBlock waitForCommand() noexcept
{
    library.commandEvent.wait();
    return library.copyCommandBlock();
}

} // namespace

std::uint32_t runWorker(void*)
{
    for (CommandBlock block = waitForCommand(); block.command != CMD_QUIT; block = waitForCommand()) {
        runCommandSafely(block);
        library.runFlag = 0;
        library.idleEvent.set();
    }
    library.idleEvent.set();
    library.manualDrive.reset();
    return 0;
}

} // namespace tesmor
