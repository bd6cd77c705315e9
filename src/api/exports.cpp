// SPDX-License-Identifier: GPL-2.0-or-later
// The exported functions. Each posting function writes exactly the fields named here; that they differ, also in what
// they do to runFlag, is part of the contract.
#include "api/global.h"
#include "frames/frame_hook.h"

#include <algorithm>
#include <cassert>

using namespace tesmor;

namespace {

std::uint32_t runWorker(void*)
{
    library.worker.run();
    return 0;
}

void askRunningCommandToGiveUp() noexcept
{
    library.session.runFlag = 0;
}

template <class WriteFields>
std::int32_t postAbortable(WriteFields writeFields)
{
    return library.session.post(writeFields, Session::Abortable::yes) ? 1 : 0;
}

// For commands that never check runFlag.
template <class WriteFields>
std::int32_t postUnabortable(WriteFields writeFields)
{
    return library.session.post(writeFields, Session::Abortable::no) ? 1 : 0;
}

std::int32_t postWithoutParameters(CommandCode command)
{
    return postAbortable([=](CommandBlock& block) {
        block.command = command;
        block.angle = 0.0;
        block.magnification = 0;
    });
}

} // namespace

extern "C" {

std::int32_t tesmor_init(void)
{
    library.workerHandle = platform::createSuspendedThread(runWorker);
    const std::int32_t resumed = library.workerHandle ? platform::resumeThread(library.workerHandle) : 0;
    if (!resumed)
        library.workerHandle = nullptr;
    return resumed;
}

std::int32_t tesmor_fini(void)
{
    askRunningCommandToGiveUp();
    const std::int32_t woken = postWithoutParameters(CMD_QUIT);
    if (!library.workerHandle)
        return woken;
    platform::waitForThread(library.workerHandle);
    const std::int32_t closed = platform::closeThread(library.workerHandle);
    library.workerHandle = nullptr;
    return closed;
}

std::int32_t tesmor_doing(void)
{
    return library.session.busyFlag;
}

void tesmor_video(const std::uint8_t* image, std::int32_t width, std::int32_t height)
{
    handleFrame(library.session, image, width, height);
}

std::int32_t tesmor_start(std::uint16_t magnification, DoneCallback doneCallback, void* context)
{
    return postAbortable([=](CommandBlock& block) {
        block.command = CMD_AUTOFOCUS;
        block.angle = 0.0;
        block.magnification = magnification;
        block.doneCallback = doneCallback;
        block.context = context;
    });
}

std::int32_t tesmor_stop(void)
{
    askRunningCommandToGiveUp();
    return postWithoutParameters(CMD_IDLE);
}

std::int32_t tesmor_startif(std::uint16_t magnification, std::uint16_t sliceCount, std::int32_t sliceSpacing,
                            FrameCallback frameCallback, void* context, std::uint32_t notifyOnly)
{
    return postAbortable([=](CommandBlock& block) {
        block.command = CMD_STACK;
        block.angle = 0.0;
        block.magnification = magnification;
        block.sliceCount = sliceCount;
        block.sliceSpacing = sliceSpacing;
        block.notifyOnly = notifyOnly;
        block.frameCallback = frameCallback;
        block.context = context;
        block.doneCallback = nullptr;
        block.width = 0;
        block.height = 0;
    });
}

std::int32_t tesmor_cancelif(void)
{
    askRunningCommandToGiveUp();
    postAbortable([](CommandBlock& block) {
        block.command = CMD_IDLE;
        block.angle = 0.0;
        block.magnification = 0;
        block.sliceCount = 0;
        block.sliceSpacing = 0;
    });
    return postWithoutParameters(CMD_IDLE);
}

std::int32_t tesmor_capture(FrameCallback frameCallback, void* context)
{
    return postAbortable([=](CommandBlock& block) {
        block.command = CMD_CAPTURE;
        block.angle = 0.0;
        block.magnification = 0;
        block.sliceCount = 0;
        block.sliceSpacing = 0;
        block.notifyOnly = 0;
        block.doneCallback = nullptr;
        block.frameCallback = frameCallback;
        block.context = context;
        block.width = 0;
        block.height = 0;
    });
}

std::int32_t tesmor_fusion(const std::uint8_t* const* images, std::uint64_t count, std::uint32_t width,
                           std::uint32_t height, std::uint8_t* output, FrameCallback frameCallback, void* context)
{
    assert(count <= MAX_IMAGES);
    return postAbortable([=](CommandBlock& block) {
        block.command = CMD_FUSION;
        block.doneCallback = nullptr;
        block.frameCallback = frameCallback;
        block.context = context;
        std::copy_n(images, count, block.images.data());
        block.output = output;
        block.imageCount = count;
        block.width = width;
        block.height = height;
    });
}

std::int32_t tesmor_manual(double angle, DoneCallback doneCallback, void* context)
{
    return postUnabortable([=](CommandBlock& block) {
        block.command = CMD_MANUAL;
        block.angle = angle;
        block.magnification = 0;
        block.doneCallback = doneCallback;
        block.frameCallback = nullptr;
        block.context = context;
    });
}

std::int32_t tesmor_reset(void)
{
    return postUnabortable([](CommandBlock& block) { block.command = CMD_RESET; });
}

} // extern "C"
