// SPDX-License-Identifier: GPL-2.0-or-later
#include "frames_from_stdin.h"

#include <tesmor.h>

#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <threads.h>

static int32_t frameWidth;
static int32_t frameHeight;
static atomic_ulong frameCount;
static atomic_int inputEnded;

static int runVideo(void* unused)
{
    const size_t size = frameBytes(frameWidth, frameHeight);
    uint8_t* frame = malloc(size);
    (void)unused;
    while (frame && fread(frame, 1, size, stdin) == size) {
        ++frameCount;
        tesmor_video(frame, frameWidth, frameHeight);
    }
    free(frame);
    inputEnded = 1;
    return 0;
}

size_t frameBytes(int32_t width, int32_t height)
{
    return ((size_t)width * 24 + 31) / 32 * 4 * (size_t)height;
}

int startVideo(int32_t width, int32_t height)
{
    const struct timespec pause = {0, 10 * 1000 * 1000};
    thrd_t thread;
    frameWidth = width;
    frameHeight = height;
    if (thrd_create(&thread, runVideo, NULL) != thrd_success || thrd_detach(thread) != thrd_success) {
        fprintf(stderr, "Could not start a thread; close other programs.\n");
        return 0;
    }
    while (framesSoFar() == 0 && !inputEnded)
        thrd_sleep(&pause, NULL);
    if (framesSoFar() == 0)
        fprintf(stderr, "No frame arrived; start this program as: tesmor microscope | PROGRAM\n");
    return framesSoFar() != 0;
}

unsigned long framesSoFar(void)
{
    return frameCount;
}
