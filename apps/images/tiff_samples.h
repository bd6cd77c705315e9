// SPDX-License-Identifier: GPL-2.0-or-later
// The samples of a page of a TIFF file.
#pragma once

#include <QImage>
#include <QSize>

#include <cstdint>

struct tiff;

namespace tesmor::apps {

struct SampleLayout {
    QSize size;
    int bits;    // of a sample: 8 or 16
    int samples; // of a pixel
    int colours; // the first 1 or 3 of them
    bool apart;  // each sample in a plane of its own
};

// Of format Grayscale8, Grayscale16, RGB888 or RGBX64; null if the file is damaged. Throws std::bad_alloc.
//   behind   the image that lies so many behind the page's own, with no page; up to imageRoom(), which is not checked
QImage readSamples(tiff* file, const SampleLayout& layout, int behind = 0);

// How many images like the page's, its own among them, have room one behind the other before the file or the samples
// end; 1 if they are compressed or not in one piece.
std::int64_t imageRoom(tiff* file, const SampleLayout& layout);

} // namespace tesmor::apps
