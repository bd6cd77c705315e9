/* Writes an image file that every image viewer reads. */
#ifndef PPM_FILE_H
#define PPM_FILE_H

#include <stdint.h>

/* `image` is in the library's frame layout. Says on the standard error what went wrong, and then returns 0; else 1. */
int writePpm(const char* fileName, const uint8_t* image, int32_t width, int32_t height);

#endif
