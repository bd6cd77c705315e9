/*
 * Begins an autofocus and changes its mind, as a user does who presses Cancel.
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
        return "The picture was in focus before the cancel.";
    case TESMOR_MOVE_FAILED:
        return "The focus motor does not answer. Check the camera's cable, close other programs that use its motor, "
               "and try again.";
    case TESMOR_ABORTED:
        return "Autofocus was cancelled. The focus stays where it was stopped.";
    case TESMOR_NO_DRIVE:
        return "No focus motor was found. Connect a camera that has one, and see that its driver is running.";
    case TESMOR_NO_FRAME:
        return "The camera sends no pictures. Start its live view and try again.";
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
        fprintf(stderr, "The system has no thread to spare; close other programs.\n");
        return 1;
    }
    if (startVideo(width, height)) {
        printf("Focusing ...\n");
        tesmor_start((uint16_t)magnification, onDone, &outcome);
        while (!tesmor_doing() && outcome == UNKNOWN)
            thrd_yield();
        waitForFrames(framesSoFar() + FRAMES_BEFORE_CANCEL);

        /* Waits until the search has ended: 128 ms and the motor move in hand. A viewer calls it on a helper thread,
           so that its window stays alive when the motor does not answer (7.7 seconds). */
        timespec_get(&before, TIME_UTC);
        tesmor_cancelif();
        timespec_get(&after, TIME_UTC);
        printf("%s\n", textFor(outcome)); /* onDone has been called before tesmor_cancelif returned */
        printf("The cancel took %ld ms.\n",
               (long)(after.tv_sec - before.tv_sec) * 1000 + (after.tv_nsec - before.tv_nsec) / 1000000);
    }
    tesmor_fini();
    return outcome == TESMOR_ABORTED ? 0 : 1;
}
