// SPDX-License-Identifier: GPL-2.0-or-later
/*
 * The examples' camera: raw frames from the standard input in the library's layout, as written by `tesmor microscope`.
 * A viewer uses its own video thread instead.
 */
#ifndef FRAMES_FROM_STDIN_H
#define FRAMES_FROM_STDIN_H

#include <stddef.h>
#include <stdint.h>

/* Size of a frame in bytes: 3 bytes per pixel, each row padded to a multiple of 4 bytes. */
size_t frameBytes(int32_t width, int32_t height);

/*
 * Starts the video thread, which passes every frame to tesmor_video until the input or the program ends. Returns 1 once
 * the first frame has arrived, or 0 if none does; it then says so on the standard error.
 */
int startVideo(int32_t width, int32_t height);

/* The number of frames received so far. Any thread. */
unsigned long framesSoFar(void);

#endif
