/* SPDX-License-Identifier: GPL-2.0-or-later */
/**
 * @file
 * Loads the library at run time, for a host that must also run without it: no link option, no import library, just this
 * header and tesmor.h. Plain C.
 *
 * @code
 *   TesmorFunctions tesmor;
 *   if (tesmor_load(&tesmor, NULL) && tesmor.init())
 *       tesmor.start(40, onDone, context);
 *   else
 *       hideTheAutofocusButton();
 * @endcode
 *
 * On older Linux systems, link with ${CMAKE_DL_LIBS} (-ldl).
 */
#ifndef TESMOR_LOADER_H
#define TESMOR_LOADER_H

#include "tesmor.h"

#include <stddef.h>
#include <stdlib.h>
#include <string.h>

#ifndef _WIN32
#include <dlfcn.h>
#elif defined(_WINDOWS_)
/** @cond */
typedef HMODULE TesmorModule;
/** @endcond */
#else
/* Declared as in windows.h, which is not included: how and when to include it is the host's choice. */
/** @cond */
#ifdef NO_STRICT
typedef void* TesmorModule;
#else
typedef struct HINSTANCE__* TesmorModule;
#endif
#ifdef __cplusplus
extern "C" {
#endif
__declspec(dllimport) TesmorModule __stdcall LoadLibraryW(const wchar_t* file);
__declspec(dllimport) intptr_t(__stdcall* __stdcall GetProcAddress(TesmorModule module, const char* name))(void);
__declspec(dllimport) int __stdcall MultiByteToWideChar(unsigned int codePage, unsigned long flags, const char* text,
                                                        int length, wchar_t* wideText, int wideLength);
#ifdef __cplusplus
}
#endif
/** @endcond */
#endif

/** The file name of the library that matches this header: tesmor.dll or libtesmor.so.0. */
#ifdef _WIN32
#define TESMOR_LIBRARY_FILE "tesmor.dll"
#else
#define TESMOR_LIBRARY_FILE "libtesmor.so." TESMOR_TEXT_OF(TESMOR_VERSION_MAJOR)
/** @cond */
#define TESMOR_TEXT_OF(number) TESMOR_TEXT_OF_ARGUMENT(number)
#define TESMOR_TEXT_OF_ARGUMENT(number) #number
/** @endcond */
#endif

/** The functions of tesmor.h, under their names without the prefix. */
typedef struct TesmorFunctions {
    /** @cond */
    int32_t (*init)(void);
    int32_t (*fini)(void);
    void (*video)(const uint8_t* image, int32_t width, int32_t height);
    int32_t (*doing)(void);
    int32_t (*start)(uint16_t magnification, DoneCallback doneCallback, void* context);
    int32_t (*stop)(void);
    int32_t (*startif)(uint16_t magnification, uint16_t sliceCount, int32_t sliceSpacing, FrameCallback frameCallback,
                       void* context, uint32_t notifyOnly);
    int32_t (*cancelif)(void);
    int32_t (*capture)(FrameCallback frameCallback, void* context);
    int32_t (*fusion)(const uint8_t* const* images, uint64_t count, uint32_t width, uint32_t height, uint8_t* output,
                      FrameCallback frameCallback, void* context);
    int32_t (*manual)(double angle, DoneCallback doneCallback, void* context);
    int32_t (*reset)(void);
    /** @endcond */
} TesmorFunctions;

/** @cond */
#ifdef _WIN32
#define TESMOR_PATH_CHARACTERS 32768 /* the longest path that Windows knows */
static inline TesmorModule tesmor_load_file(const char* utf8)
{
    enum { UTF8 = 65001, REFUSE_INVALID = 8 };
    TesmorModule library = NULL;
    wchar_t* wide = (wchar_t*)malloc(TESMOR_PATH_CHARACTERS * sizeof(wchar_t));
    if (wide && MultiByteToWideChar(UTF8, REFUSE_INVALID, utf8, -1, wide, TESMOR_PATH_CHARACTERS))
        library = LoadLibraryW(wide);
    free(wide);
    return library;
}
#endif
/** @endcond */

/**
 * Loads the library and looks up its functions. The library then stays loaded until the process ends; it must never be
 * unloaded. Any thread, but only one at a time.
 * @param functions filled in on success; otherwise every member is null
 * @param file the path of the library, on Windows in UTF-8; null: TESMOR_LIBRARY_FILE, where the system looks for
 * libraries
 * @return 1, or 0 if the library is missing or lacks a function; dlerror() or GetLastError() then tells why
 */
static inline int tesmor_load(TesmorFunctions* functions, const char* file)
{
    const struct {
        const char* name;
        void* member;
    } table[] = {
        {"tesmor_init", &functions->init},       {"tesmor_fini", &functions->fini},
        {"tesmor_video", &functions->video},     {"tesmor_doing", &functions->doing},
        {"tesmor_start", &functions->start},     {"tesmor_stop", &functions->stop},
        {"tesmor_startif", &functions->startif}, {"tesmor_cancelif", &functions->cancelif},
        {"tesmor_capture", &functions->capture}, {"tesmor_fusion", &functions->fusion},
        {"tesmor_manual", &functions->manual},   {"tesmor_reset", &functions->reset},
    };
    size_t i;
#ifdef _WIN32
    TesmorModule library = tesmor_load_file(file ? file : TESMOR_LIBRARY_FILE);
#else
    void* library = dlopen(file ? file : TESMOR_LIBRARY_FILE, RTLD_NOW | RTLD_LOCAL);
#endif
    memset(functions, 0, sizeof *functions);
    for (i = 0; library && i < sizeof table / sizeof table[0]; ++i) {
#ifdef _WIN32
        intptr_t(__stdcall * function)(void) = GetProcAddress(library, table[i].name);
#else
        void* function = dlsym(library, table[i].name);
#endif
        if (!function) {
            memset(functions, 0, sizeof *functions);
            return 0;
        }
        memcpy(table[i].member, &function, sizeof function); /* C has no cast for this */
    }
    return library != NULL;
}

#endif
