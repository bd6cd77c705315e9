// The process-wide state: made once by the load-time set-up, never destroyed.
#pragma once

#include "measure/luma_tables.h"
#include "platform/event.h"
#include "platform/lock.h"
#include "platform/thread.h"
#include "session/command_block.h"

#include <atomic>
#include <cstdint>
#include <memory>

namespace tesmor {

class FocusDrive;

// The members stand in the order in which the load-time set-up makes them.
struct Library {
    explicit Library(platform::ModuleHandle module);

    platform::ModuleHandle moduleHandle;
    std::int32_t chineseLocale; // nothing reads it

    CommandBlock commandBlock{}; // guarded by commandLock

    platform::Event commandEvent{platform::Reset::automatic, false}; // a post wakes the worker
    platform::Event idleEvent{platform::Reset::automatic, true};     // the worker is ready for a post
    platform::Event frameEvent{platform::Reset::automatic, true};    // the hook has served a requested frame

    // Held for short copies and stores only, never across a wait, a move or a callback.
    platform::Lock commandLock;

    LumaTables lumaTables;

    std::atomic<std::int32_t> runFlag{0};      // 0 asks the running command to give up
    std::atomic<std::int32_t> frameRequest{0}; // the worker waits for a frame
    std::atomic<std::uint32_t> frameWait{0};   // the number of the worker's present or last frame wait
    std::atomic<std::uint32_t> servedWait{0};  // the number of the wait that frameEvent was last set for
    std::atomic<std::int32_t> busyFlag{0};     // what tesmor_doing returns

    platform::ThreadHandle workerHandle = nullptr;
    std::unique_ptr<FocusDrive> manualDrive; // the worker's, kept open between manual moves

    // A copy of the whole block, taken under the lock.
    CommandBlock copyCommandBlock() noexcept;
};

extern Library& library;

// The load-time set-up; once a process, before anything else of the library runs.
void setUpLibrary(platform::ModuleHandle module);

// Whether code page and language together say Simplified Chinese.
bool isSimplifiedChinese(std::uint32_t codePage, std::uint16_t languageId) noexcept;

} // namespace tesmor
