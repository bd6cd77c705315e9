// SPDX-License-Identifier: GPL-2.0-or-later
/*
 * Captures one image and writes it to a file.
 *
 *   cc -std=c11 capture.c frames_from_stdin.c ppm_file.c $(pkg-config --cflags --libs tesmor) -o capture
 *   tesmor microscope | ./capture image.ppm
 */
#include "frames_from_stdin.h"
#include "ppm_file.h"

#include <tesmor.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <threads.h>

enum { PATIENCE_SECONDS = 5 }; /* the library waits up to 4.2 for a frame */

typedef struct Picture {
    mtx_t lock;
    cnd_t changed;
    int known; /* whether the frame has arrived; copy is null if there was no memory for it */
    uint8_t* copy;
    int32_t width;
    int32_t height;
} Picture;

/* On the video thread. The frame belongs to the camera: copy it here, and leave the rest to another thread. */
static void onFrame(const uint8_t* image, int32_t width, int32_t height, void* context, int32_t result)
{
    Picture* picture = context;
    (void)result; /* always TESMOR_SUCCESS: a capture that fails does not call back */
    mtx_lock(&picture->lock);
    picture->known = 1;
    picture->width = width;
    picture->height = height;
    picture->copy = malloc(frameBytes(width, height));
    if (picture->copy)
        memcpy(picture->copy, image, frameBytes(width, height));
    cnd_signal(&picture->changed);
    mtx_unlock(&picture->lock);
}

/* Silence is the only sign that a capture has failed, so the wait needs a limit. */
static int waitForPicture(Picture* picture)
{
    struct timespec deadline;
    int known;
    timespec_get(&deadline, TIME_UTC);
    deadline.tv_sec += PATIENCE_SECONDS;
    mtx_lock(&picture->lock);
    while (!picture->known && cnd_timedwait(&picture->changed, &picture->lock, &deadline) == thrd_success)
        ;
    known = picture->known;
    mtx_unlock(&picture->lock);
    return known;
}

int main(int argc, char** argv)
{
    const int32_t width = argc > 3 ? atoi(argv[2]) : 640;
    const int32_t height = argc > 3 ? atoi(argv[3]) : 480;
    Picture picture = {.known = 0};
    int written = 0;

    if (argc < 2 || width <= 0 || height <= 0) {
        fprintf(stderr, "Usage: tesmor microscope | %s FILE.ppm [WIDTH HEIGHT]\n", argv[0]);
        return 2;
    }
    mtx_init(&picture.lock, mtx_plain);
    cnd_init(&picture.changed);
    if (!tesmor_init()) {
        fprintf(stderr, "Could not start a thread; close other programs.\n");
        return 1;
    }
    if (startVideo(width, height)) {
        tesmor_capture(onFrame, &picture);
        if (!waitForPicture(&picture))
            fprintf(stderr, "The camera is not sending images. Start its live view and try again.\n");
        else if (!picture.copy)
            fprintf(stderr, "There is not enough memory for the image; close other programs.\n");
        else if ((written = writePpm(argv[1], picture.copy, picture.width, picture.height)) != 0)
            printf("Wrote %s.\n", argv[1]);
    }
    tesmor_fini(); /* no call of onFrame begins after this */
    free(picture.copy);
    return written ? 0 : 1;
}
