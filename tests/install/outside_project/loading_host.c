// SPDX-License-Identifier: GPL-2.0-or-later
/* Loads the library that is named, or the installed one, and merges an image with it; goes on without one that is
   missing. In C and, as it stands, in C++. */
#include <tesmor_loader.h>

#include <stdio.h>

static void onFrame(const uint8_t* image, int32_t width, int32_t height, void* context, int32_t result)
{
    if (image && width == 2 && height == 2)
        *(int32_t*)context = result;
}

int main(int argc, char** argv)
{
    const uint8_t image[2 * 8] = {0};
    const uint8_t* images[1];
    uint8_t output[2 * 8];
    int32_t result = 99;
    TesmorFunctions tesmor;

    images[0] = image;
    if (!tesmor_load(&tesmor, argc > 1 ? argv[1] : NULL)) {
        puts("without the library");
        return tesmor.init || tesmor.reset ? 1 : 0;
    }
    if (!tesmor.init() || !tesmor.fusion(images, 1, 2, 2, output, onFrame, &result) || !tesmor.reset() || result != 0)
        return 2;
    puts("with the library");
    return tesmor.fini() ? 0 : 3;
}
