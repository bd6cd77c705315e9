// SPDX-License-Identifier: GPL-2.0-or-later
// Runs the load-time set-up when the DLL is attached to a process. Nothing is undone at detach.
#include "platform/module.h"

BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID)
{
    if (reason != DLL_PROCESS_ATTACH)
        return TRUE;
    DisableThreadLibraryCalls(module);
    // An unload must not pull the code from under a live worker.
    HMODULE pinned = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       reinterpret_cast<LPCSTR>(&DllMain), &pinned);
    tesmor::platform::onLoad(module);
    return TRUE;
}
