// SPDX-License-Identifier: GPL-2.0-or-later
#include "api/global.h"
#include "platform/locale.h"

#include <algorithm>
#include <new>

namespace tesmor {

namespace {

// Storage for the library's state, which is never destroyed: the worker may still be running at exit.
union LibraryStorage {
    constexpr LibraryStorage() noexcept : empty{} {}
    ~LibraryStorage() {}

    char empty;
    Library library;
};

constinit LibraryStorage storage;

} // namespace

constinit Library& library = storage.library;

bool isSimplifiedChinese(std::uint32_t codePage, std::uint16_t languageId) noexcept
{
    constexpr std::uint32_t codePages[] = {936, 10008, 20936, 50227, 50935, 50936, 51936, 54936};
    constexpr std::uint16_t languageIds[] = {2052, 4, 4100};
    return std::ranges::find(codePages, codePage) != std::end(codePages) &&
           std::ranges::find(languageIds, languageId) != std::end(languageIds);
}

Library::Library(platform::ModuleHandle module, platform::DriveUnits& units, platform::Clock& clock)
    : moduleHandle(module),
      chineseLocale(isSimplifiedChinese(platform::ansiCodePage(), platform::userLanguageId()) ? 1 : 0),
      worker(session, units, clock)
{
}

Library& setUpLibrary(platform::ModuleHandle module, platform::DriveUnits& units, platform::Clock& clock)
{
    return *new (&storage.library) Library(module, units, clock);
}

void platform::onLoad(ModuleHandle module)
{
    setUpLibrary(module, systemDriveUnits(), systemClock());
}

} // namespace tesmor
