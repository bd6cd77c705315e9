// SPDX-License-Identifier: GPL-2.0-or-later
#include "worker/worker.h"

#include "drive/focus_drive.h"
#include "fusion/fuse_images.h"
#include "operations/autofocus_search.h"
#include "operations/manual_move.h"
#include "operations/stack_capture.h"
#include "platform/idle_priority.h"
#include "platform/thread.h"

#include <new>

namespace tesmor {

namespace {

class BusyScope {
public:
    explicit BusyScope(std::atomic<std::int32_t>& busyFlag) noexcept : busyFlag_(busyFlag)
    {
        busyFlag_ = 1;
    }
    ~BusyScope()
    {
        busyFlag_ = 0;
    }
    BusyScope(const BusyScope&) = delete;
    BusyScope& operator=(const BusyScope&) = delete;

private:
    std::atomic<std::int32_t>& busyFlag_;
};

template <class Callback, class... Arguments>
void callHost(Callback callback, Arguments... arguments)
{
    const platform::CreatorSignals signals;
    callback(arguments...);
}

} // namespace

Worker::Worker(Session& session, platform::DriveUnits& units, platform::Clock& clock) noexcept
    : session_(session), units_(units), clock_(clock), frames_(session, clock)
{
}

Worker::~Worker() = default;

void Worker::run() noexcept
{
    for (CommandBlock block = session_.waitForCommand(); block.command != CMD_QUIT; block = session_.waitForCommand()) {
        try {
            runCommand(block);
        } catch (...) {
            // A host callback threw: the stack is unwound, and the worker continues.
        }
        session_.runFlag = 0;
        session_.idleEvent.set();
    }
    session_.idleEvent.set();
    manualDrive_.reset();
}

void Worker::runCommand(const CommandBlock& block)
{
    if (block.command == CMD_RESET) {
        manualDrive_.reset();
    } else if (const Operation operation = operationOf(block.command)) {
        BusyScope busy(session_.busyFlag);
        (this->*operation)(block);
    }
}

Worker::Operation Worker::operationOf(CommandCode command) noexcept
{
    switch (command) {
    case CMD_AUTOFOCUS:
        return &Worker::autofocus;
    case CMD_MANUAL:
        return &Worker::move;
    case CMD_STACK:
        return &Worker::stack;
    case CMD_CAPTURE:
        return &Worker::capture;
    case CMD_FUSION:
        return &Worker::fusion;
    default:
        return nullptr;
    }
}

void Worker::autofocus(const CommandBlock& block)
{
    manualDrive_.reset();
    const auto search = [&] {
        FocusDrive drive(units_, clock_);
        return autofocusSearch(drive, frames_, block.magnification);
    };
    const std::int32_t result = search();
    callHost(block.doneCallback, block.context, result);
}

void Worker::move(const CommandBlock& block)
{
    manualDrive_.reset();
    manualDrive_.reset(new (std::nothrow) FocusDrive(units_, clock_));
    const std::int32_t result = manualDrive_ ? manualMove(*manualDrive_, block.angle) : TESMOR_NO_DRIVE;
    if (block.doneCallback)
        callHost(block.doneCallback, block.context, result);
}

void Worker::stack(const CommandBlock& block)
{
    const auto report = [&](std::int32_t result) {
        callHost(block.frameCallback, nullptr, 0, 0, block.context, result);
    };
    manualDrive_.reset();
    FocusDrive drive(units_, clock_); // still open while the result is reported
    const StackPlan plan{block.magnification, block.sliceCount, block.sliceSpacing, block.notifyOnly != 0};
    report(captureStack(drive, frames_, plan, [&] { report(TESMOR_SUCCESS); }));
}

// The frame hook passes the frame to the host; a failure is not reported.
void Worker::capture(const CommandBlock&)
{
    frames_.next();
}

void Worker::fusion(const CommandBlock& block)
{
    const auto onProgress = [&](std::int32_t percent) {
        callHost(block.frameCallback, nullptr, 0, 0, block.context, percent);
    };
    const auto fuse = [&] {
        platform::IdlePriority idlePriority;
        return fuseImages(block.images.data(), block.imageCount, block.width, block.height, block.output,
                          session_.runFlag, onProgress);
    };
    const std::int32_t result = fuse();
    callHost(block.frameCallback, block.output, static_cast<std::int32_t>(block.width),
             static_cast<std::int32_t>(block.height), block.context, result);
}

} // namespace tesmor
