// SPDX-License-Identifier: GPL-2.0-or-later
/* Writes a PPM file, which most image viewers can read. */
#ifndef PPM_FILE_H
#define PPM_FILE_H

#include <stdint.h>

/* `image` is in the library's frame layout. Returns 1, or 0 after an error message on the standard error. */
int writePpm(const char* fileName, const uint8_t* image, int32_t width, int32_t height);

#endif
