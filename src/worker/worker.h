// SPDX-License-Identifier: GPL-2.0-or-later
// The worker: takes one command at a time from the session, runs it to its end, reports its result and becomes idle.
#pragma once

#include "frames/frame_wait.h"
#include "platform/clock.h"
#include "platform/drive_device.h"
#include "session/session.h"

#include <memory>

namespace tesmor {

class FocusDrive;

class Worker {
public:
    // All three must outlive it.
    Worker(Session& session, platform::DriveUnits& units, platform::Clock& clock) noexcept;
    ~Worker();

    // Runs posted commands on the calling thread until CMD_QUIT. An exception from a host's callback ends that command
    // and goes no further.
    void run() noexcept;

private:
    using Operation = void (Worker::*)(const CommandBlock& block);

    static Operation operationOf(CommandCode command) noexcept;
    void runCommand(const CommandBlock& block);

    // Each reports its result to the host.
    void autofocus(const CommandBlock& block);
    void move(const CommandBlock& block);
    void stack(const CommandBlock& block);
    void capture(const CommandBlock& block);
    void fusion(const CommandBlock& block);

    Session& session_;
    platform::DriveUnits& units_;
    platform::Clock& clock_;
    FrameWait frames_;
    std::unique_ptr<FocusDrive> manualDrive_; // of the last manual move; no other drive is open beside it
};

} // namespace tesmor
