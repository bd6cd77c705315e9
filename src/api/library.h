// SPDX-License-Identifier: GPL-2.0-or-later
// The library's state in a process: one session, its worker, and what set-up learns about the process.
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

// Set-up: creates the library that the exports work on from now on. It is never destroyed.
Library& setUpLibrary(platform::ModuleHandle module, platform::DriveUnits& units, platform::Clock& clock);

// Whether code page and language together say Simplified Chinese.
bool isSimplifiedChinese(std::uint32_t codePage, std::uint16_t languageId) noexcept;

} // namespace tesmor
