// SPDX-License-Identifier: GPL-2.0-or-later
/*
 * Runs an autofocus.
 *
 *   cc -std=c11 autofocus.c frames_from_stdin.c $(pkg-config --cflags --libs tesmor) -o autofocus
 *   tesmor microscope --magnification 40 | ./autofocus 40
 */
#include "frames_from_stdin.h"

#include <tesmor.h>

#include <stdio.h>
#include <stdlib.h>
#include <threads.h>

/* Carries the result from the library's worker to the waiting thread. A viewer posts an event to its window instead. */
typedef struct Outcome {
    mtx_t lock;
    cnd_t changed;
    int known;
    int32_t result;
} Outcome;

static void onDone(void* context, int32_t result)
{
    Outcome* outcome = context;
    mtx_lock(&outcome->lock);
    outcome->known = 1;
    outcome->result = result;
    cnd_signal(&outcome->changed);
    mtx_unlock(&outcome->lock);
}

static const char* textFor(int32_t result)
{
    switch (result) {
    case TESMOR_SUCCESS:
        return "The image is in focus.";
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

int main(int argc, char** argv)
{
    const long magnification = argc > 1 ? strtol(argv[1], NULL, 10) : 0;
    const int32_t width = argc > 3 ? atoi(argv[2]) : 640;
    const int32_t height = argc > 3 ? atoi(argv[3]) : 480;
    Outcome outcome = {.known = 0};

    if (magnification <= 0 || width <= 0 || height <= 0) {
        fprintf(stderr, "Usage: tesmor microscope | %s MAGNIFICATION [WIDTH HEIGHT]\n", argv[0]);
        return 2;
    }
    mtx_init(&outcome.lock, mtx_plain);
    cnd_init(&outcome.changed);
    if (!tesmor_init()) {
        fprintf(stderr, "Could not start a thread; close other programs.\n");
        return 1;
    }
    if (startVideo(width, height)) {
        printf("Focusing ...\n");
        tesmor_start((uint16_t)magnification, onDone, &outcome);

        mtx_lock(&outcome.lock);
        while (!outcome.known)
            cnd_wait(&outcome.changed, &outcome.lock);
        mtx_unlock(&outcome.lock);

        printf("%s\n", textFor(outcome.result));
    }
    tesmor_fini();
    return outcome.known && outcome.result == TESMOR_SUCCESS ? 0 : 1;
}
