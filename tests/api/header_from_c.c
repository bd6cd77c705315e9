// SPDX-License-Identifier: GPL-2.0-or-later
/* A host in C, linked to the shared library: every export is there with its signature. */
#include "tesmor.h"

#include <stdio.h>
#include <string.h>

static int32_t lastResult = 99;

static void onDone(void* context, int32_t result)
{
    *(int32_t*)context = result;
}

static void onFrame(const uint8_t* image, int32_t width, int32_t height, void* context, int32_t result)
{
    if (image && width == 2 && height == 2)
        *(int32_t*)context = result;
}

int main(void)
{
    const uint8_t image[2 * 8] = {0};
    uint8_t output[2 * 8];
    const uint8_t* images[1];
    int32_t (*const others[])(void) = {tesmor_stop, tesmor_cancelif, tesmor_reset};
    size_t i;

    images[0] = image;
    memset(output, 7, sizeof output);
    if (tesmor_init() != 1)
        return 1;
    for (i = 0; i < sizeof others / sizeof others[0]; ++i) {
        if (!others[i]())
            return 2;
    }
    if (!tesmor_fusion(images, 1, 2, 2, output, onFrame, &lastResult))
        return 3;
    if (!tesmor_capture(onFrame, &lastResult) || lastResult != TESMOR_SUCCESS || output[0] != 0 || output[6] != 7)
        return 4;
    tesmor_video(image, 2, 2);
    if (!tesmor_stop() || tesmor_doing())
        return 5;
    if (!tesmor_fini())
        return 6;
    /* Without a worker one post goes through and nothing runs it. */
    if (!tesmor_start(4, onDone, &lastResult))
        return 7;
    (void)tesmor_startif;
    (void)tesmor_manual;
    printf("tesmor %s\n", TESMOR_VERSION);
    return 0;
}
