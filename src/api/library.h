// The library's state in a process: one session, its worker, and what the set-up learns of the process.
#pragma once

#include "platform/module.h"
#include "platform/thread.h"
#include "session/session.h"
#include "worker/worker.h"

#include <cstdint>

namespace tesmor {

struct Library {
    Library(platform::ModuleHandle module, platform::DriveUnits& units, platform::Clock& clock);

    platform::ModuleHandle moduleHandle; // nothing reads it
    std::int32_t chineseLocale;          // nothing reads it
    Session session;
    Worker worker;
    platform::ThreadHandle workerHandle = nullptr;
};

// The set-up: makes the library anew, for the exports to work on from now on. Nothing ever destroys it.
Library& setUpLibrary(platform::ModuleHandle module, platform::DriveUnits& units, platform::Clock& clock);

// Whether code page and language together say Simplified Chinese.
bool isSimplifiedChinese(std::uint32_t codePage, std::uint16_t languageId) noexcept;

} // namespace tesmor
