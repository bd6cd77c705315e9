// SPDX-License-Identifier: GPL-2.0-or-later
/*
 * Starts an autofocus and cancels it, as when the user presses Cancel.
 *
 *   cc -std=c11 cancel.c frames_from_stdin.c $(pkg-config --cflags --libs tesmor) -o cancel
 *   tesmor microscope --magnification 40 | ./cancel 40
 */
#include "frames_from_stdin.h"

#include <tesmor.h>

#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <threads.h>

enum { FRAMES_BEFORE_CANCEL = 15, UNKNOWN = 99 };

static void onDone(void* context, int32_t result)
{
    atomic_int* outcome = context;
    *outcome = result;
}

static const char* textFor(int32_t result)
{
    switch (result) {
    case TESMOR_SUCCESS:
        return "The image was in focus before the cancel.";
    case TESMOR_MOVE_FAILED:
        return "The focus motor does not respond. Check the camera's cable, close other programs that use the motor, "
               "and try again.";
    case TESMOR_ABORTED:
        return "Cancelled. The focus stays where it stopped.";
    case TESMOR_NO_DRIVE:
        return "No focus motor was found. Connect a camera that has one, and check that its driver is running.";
    case TESMOR_NO_FRAME:
        return "The camera is not sending images. Start its live view and try again.";
    default:
        return "Autofocus failed for an unknown reason. Try again.";
    }
}

static void waitForFrames(unsigned long number)
{
    const struct timespec pause = {0, 5 * 1000 * 1000};
    while (framesSoFar() < number && tesmor_doing())
        thrd_sleep(&pause, NULL);
}

int main(int argc, char** argv)
{
    const long magnification = argc > 1 ? strtol(argv[1], NULL, 10) : 0;
    const int32_t width = argc > 3 ? atoi(argv[2]) : 640;
    const int32_t height = argc > 3 ? atoi(argv[3]) : 480;
    atomic_int outcome = UNKNOWN;
    struct timespec before, after;

    if (magnification <= 0 || width <= 0 || height <= 0) {
        fprintf(stderr, "Usage: tesmor microscope | %s MAGNIFICATION [WIDTH HEIGHT]\n", argv[0]);
        return 2;
    }
    if (!tesmor_init()) {
        fprintf(stderr, "Could not start a thread; close other programs.\n");
        return 1;
    }
    if (startVideo(width, height)) {
        printf("Focusing ...\n");
        tesmor_start((uint16_t)magnification, onDone, &outcome);
        while (!tesmor_doing() && outcome == UNKNOWN)
            thrd_yield();
        waitForFrames(framesSoFar() + FRAMES_BEFORE_CANCEL);

        /* Waits for the search to end: up to 128 ms plus the current motor move. A viewer calls it on a background
           thread, so that its window stays responsive if the motor does not respond (7.7 seconds). */
        timespec_get(&before, TIME_UTC);
        tesmor_cancelif();
        timespec_get(&after, TIME_UTC);
        printf("%s\n", textFor(outcome)); /* onDone was called before tesmor_cancelif returned */
        printf("Cancelling took %ld ms.\n",
               (long)(after.tv_sec - before.tv_sec) * 1000 + (after.tv_nsec - before.tv_nsec) / 1000000);
    }
    tesmor_fini();
    return outcome == TESMOR_ABORTED ? 0 : 1;
}
