/*
 * The examples' camera: raw frames from the standard input, in the layout that the library wants, as
 * `tesmor microscope` writes them. In a viewer its own video thread stands in this place.
 */
#ifndef FRAMES_FROM_STDIN_H
#define FRAMES_FROM_STDIN_H

#include <stddef.h>
#include <stdint.h>

/* Bytes of a frame: 3 bytes a pixel, each row padded to a multiple of 4 bytes. */
size_t frameBytes(int32_t width, int32_t height);

/*
 * Starts the video thread, which hands every frame to tesmor_video until the input ends or the program does.
 * Returns when the first frame has come: 1. When none comes it says so on the standard error and returns 0.
 */
int startVideo(int32_t width, int32_t height);

/* The number of frames so far. Any thread. */
unsigned long framesSoFar(void);

#endif
