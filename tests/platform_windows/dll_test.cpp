// SPDX-License-Identifier: GPL-2.0-or-later
// The DLL as a host loads it at run time: with tesmor_loader.h, by name and by ordinal.
#include "tesmor_loader.h"
#ifdef _WINDOWS_
#error tesmor_loader.h leaves the choice of Windows headers to the host
#endif
#include <winsock2.h>

#include <filesystem>
#include <gtest/gtest.h>
#include <windows.h>

namespace {

const char* const NAMES[] = {"tesmor_cancelif", "tesmor_capture", "tesmor_doing",  "tesmor_fini",
                             "tesmor_fusion",   "tesmor_init",    "tesmor_manual", "tesmor_reset",
                             "tesmor_start",    "tesmor_startif", "tesmor_stop",   "tesmor_video"};
constexpr WORD ORDINALS = 12;

template <class Function>
Function* byOrdinal(HMODULE module, WORD ordinal)
{
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, MAKEINTRESOURCEA(ordinal))));
}

TEST(Dll, ExportsEachFunctionByNameAndOrdinal)
{
    const HMODULE module = LoadLibraryA("tesmor.dll");
    ASSERT_TRUE(module) << GetLastError();
    for (WORD ordinal = 1; ordinal <= ORDINALS; ++ordinal) {
        const FARPROC named = GetProcAddress(module, NAMES[ordinal - 1]);
        EXPECT_TRUE(named) << NAMES[ordinal - 1];
        EXPECT_EQ(named, GetProcAddress(module, MAKEINTRESOURCEA(ordinal))) << NAMES[ordinal - 1];
    }
    EXPECT_FALSE(GetProcAddress(module, MAKEINTRESOURCEA(ORDINALS + 1)));
}

TEST(Dll, LoadsFromAFolderWithAnyName)
{
    const auto folder = std::filesystem::temp_directory_path() / L"\u0444\u043E\u043A\u0443\u0441 \u7126\u70B9";
    std::filesystem::create_directories(folder);
    std::filesystem::copy_file("tesmor.dll", folder / "tesmor.dll", std::filesystem::copy_options::overwrite_existing);
    const auto load = [&](const char* name) {
        TesmorFunctions tesmor;
        const bool loaded = tesmor_load(&tesmor, reinterpret_cast<const char*>((folder / name).u8string().c_str()));
        EXPECT_EQ(loaded, tesmor.doing != nullptr);
        return loaded;
    };
    EXPECT_TRUE(load("tesmor.dll")) << GetLastError();
    EXPECT_FALSE(load("missing.dll"));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_MOD_NOT_FOUND});
}

// Commands run to their end through pointers got by ordinal, and the host lets go of the DLL too early.
TEST(Dll, WorksByOrdinalAndOutlivesAnEarlyUnload)
{
    const HMODULE module = LoadLibraryA("tesmor.dll");
    ASSERT_TRUE(module) << GetLastError();
    const auto doing = byOrdinal<decltype(tesmor_doing)>(module, 3);
    const auto fini = byOrdinal<decltype(tesmor_fini)>(module, 4);
    const auto init = byOrdinal<decltype(tesmor_init)>(module, 6);
    const auto manual = byOrdinal<decltype(tesmor_manual)>(module, 7);
    ASSERT_EQ(init(), 1);
    FreeLibrary(module);
    FreeLibrary(module);
    const HANDLE moved = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    const auto onMoved = [](void* event, std::int32_t result) {
        EXPECT_EQ(result, TESMOR_NO_DRIVE);
        SetEvent(event);
    };
    EXPECT_NE(manual(1.0, onMoved, moved), 0);
    EXPECT_EQ(WaitForSingleObject(moved, 10'000), WAIT_OBJECT_0);
    EXPECT_NE(fini(), 0);
    EXPECT_EQ(doing(), 0);
    EXPECT_EQ(init(), 1) << "a second start, on the same state";
    EXPECT_NE(fini(), 0);
    CloseHandle(moved);
}

} // namespace
