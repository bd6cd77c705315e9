// SPDX-License-Identifier: GPL-2.0-or-later
/*
 * Captures images at ten focus positions and merges them into one that is sharp throughout.
 *
 *   cc -std=c11 stack_and_fuse.c frames_from_stdin.c ppm_file.c $(pkg-config --cflags --libs tesmor) -o stack_and_fuse
 *   tesmor microscope --magnification 20 --offset -500 | ./stack_and_fuse 20 sharp.ppm
 */
#include "frames_from_stdin.h"
#include "ppm_file.h"

#include <tesmor.h>

#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <threads.h>

enum { SLICES = 10, SPACING = 1, WIDTH = 640, HEIGHT = 480 };

typedef struct Job {
    uint8_t* slices[SLICES];
    unsigned sliceCount; /* received so far */
    int32_t result;      /* of the command, valid once it has ended */
    atomic_int ended;
} Job;

static void endCommand(Job* job, int32_t result)
{
    job->result = result;
    job->ended = 1; /* a viewer posts an event to its window instead */
}

/* A slice, on the video thread; or, without an image, the result of the stack, on the worker thread. */
static void onStack(const uint8_t* image, int32_t width, int32_t height, void* context, int32_t result)
{
    Job* job = context;
    if (image)
        memcpy(job->slices[job->sliceCount++], image, frameBytes(width, height));
    else
        endCommand(job, result);
}

/* Progress; or, with an image, the result of the fusion. On the worker thread. */
static void onFusion(const uint8_t* image, int32_t width, int32_t height, void* context, int32_t result)
{
    (void)width, (void)height;
    if (image)
        endCommand(context, result);
    else
        printf("Merging: %d %%\n", (int)result);
}

/* What to tell the user; the result codes run from -5 to 1. */
static const char* const TEXTS[] = {
    /* TESMOR_NO_FRAME */ "The camera is not sending images. Start its live view and try again.",
    /* TESMOR_NO_DRIVE */
    "No focus motor was found. Connect a camera that has one, and check that its driver is running.",
    /* TESMOR_ABORTED */ "Cancelled. The focus stays where it stopped.",
    /* TESMOR_NO_MEMORY */ "There is not enough memory to merge images of this size. Close other programs.",
    /* TESMOR_MOVE_FAILED */
    "The focus motor does not respond. Check the camera's cable, close other programs that use the motor, and try "
    "again.",
    /* TESMOR_SUCCESS */ "The images are merged.",
    /* TESMOR_STACK_DONE */ "The stack is complete, and the focus is back where it started.",
};

static int32_t waitForEnd(Job* job)
{
    const struct timespec pause = {0, 10 * 1000 * 1000};
    while (!atomic_exchange(&job->ended, 0))
        thrd_sleep(&pause, NULL);
    printf("%s\n", TEXTS[job->result - TESMOR_NO_FRAME]);
    return job->result;
}

int main(int argc, char** argv)
{
    const size_t size = frameBytes(WIDTH, HEIGHT);
    uint8_t* const pixels = malloc((SLICES + 1) * size); /* the slices, then the fused image */
    uint8_t* const merged = pixels + SLICES * size;
    Job job = {.sliceCount = 0};
    int written = 0;

    if (argc < 3) {
        fprintf(stderr, "Usage: tesmor microscope | %s MAGNIFICATION FILE.ppm\n", argv[0]);
        return 2;
    }
    if (!pixels || !tesmor_init()) {
        fprintf(stderr, "There is not enough memory; close other programs.\n");
        return 1;
    }
    for (size_t i = 0; i < SLICES; ++i)
        job.slices[i] = pixels + i * size;
    if (startVideo(WIDTH, HEIGHT)) {
        tesmor_startif((uint16_t)atoi(argv[1]), SLICES, SPACING, onStack, &job, 0);
        if (waitForEnd(&job) == TESMOR_STACK_DONE) {
            tesmor_fusion((const uint8_t* const*)job.slices, SLICES, WIDTH, HEIGHT, merged, onFusion, &job);
            written = waitForEnd(&job) == TESMOR_SUCCESS && writePpm(argv[2], merged, WIDTH, HEIGHT);
        }
    }
    tesmor_fini();
    free(pixels);
    return written ? 0 : 1;
}
