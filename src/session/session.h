// SPDX-License-Identifier: GPL-2.0-or-later
// What the threads share while commands run: the command block, the flags, the events, and the handshake of a post.
#pragma once

#include "measure/luma_tables.h"
#include "platform/event.h"
#include "platform/lock.h"
#include "session/command_block.h"

#include <atomic>
#include <cstdint>
#include <mutex>

namespace tesmor {

// The members are in the order in which set-up creates them at load time.
struct Session {
    CommandBlock commandBlock{}; // guarded by commandLock

    platform::Event commandEvent{platform::Reset::automatic, false}; // a post wakes the worker
    platform::Event idleEvent{platform::Reset::automatic, true};     // the worker is ready for a post
    platform::Event frameEvent{platform::Reset::automatic, true};    // the hook has served a requested frame

    // Held only for short copies and stores, never during a wait, a move or a callback.
    platform::Lock commandLock;

    LumaTables lumaTables;

    std::atomic<std::int32_t> runFlag{0};      // 0 asks the running command to give up
    std::atomic<std::int32_t> frameRequest{0}; // the worker waits for a frame
    std::atomic<std::uint32_t> frameWait{0};   // the number of the worker's present or last frame wait
    std::atomic<std::uint32_t> servedWait{0};  // the number of the wait that frameEvent was last set for
    std::atomic<std::int32_t> busyFlag{0};     // what tesmor_doing returns

    // The host's side of the handshake. Waits without limit until the worker is idle, lets `writeFields` fill in the
    // block, sets runFlag if the command checks it, and wakes the worker. Returns false if the system failed to wake
    // it.
    enum class Abortable { no, yes };
    template <class WriteFields>
    bool post(WriteFields writeFields, Abortable abortable)
    {
        idleEvent.wait();
        {
            std::lock_guard guard(commandLock);
            writeFields(commandBlock);
        }
        if (abortable == Abortable::yes)
            runFlag = 1;
        return commandEvent.set();
    }

    // The worker's side: waits without limit for a post, and returns a copy of the whole block.
    CommandBlock waitForCommand() noexcept
    {
        commandEvent.wait();
        std::lock_guard guard(commandLock);
        return commandBlock;
    }
};

} // namespace tesmor
