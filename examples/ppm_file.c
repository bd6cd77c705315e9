// SPDX-License-Identifier: GPL-2.0-or-later
#include "ppm_file.h"

#include <stdio.h>

int writePpm(const char* fileName, const uint8_t* image, int32_t width, int32_t height)
{
    const int32_t rowBytes = (width * 24 + 31) / 32 * 4;
    FILE* file = fopen(fileName, "wb");
    int written = 0;
    if (file) {
        fprintf(file, "P6\n%d %d\n255\n", (int)width, (int)height);
        for (int32_t y = 0; y < height; ++y) {
            for (const uint8_t* pixel = image + y * rowBytes; pixel < image + y * rowBytes + 3 * width; pixel += 3) {
                putc(pixel[2], file); /* red; frames begin with blue */
                putc(pixel[1], file);
                putc(pixel[0], file);
            }
        }
        written = !ferror(file);
        written = fclose(file) == 0 && written;
    }
    if (!written)
        perror(fileName);
    return written;
}
