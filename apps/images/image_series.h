// SPDX-License-Identifier: GPL-2.0-or-later
// Several images of one size. All functions throw UserError, which names the image and the remedy.
#pragma once

#include "images/depth_range.h"
#include "images/image_source.h"
#include "terminal/live_line.h"

#include <QImage>
#include <QSize>

#include <optional>
#include <vector>

namespace tesmor::apps {

struct ImageSeries {
    std::vector<ImageSource> sources;
    QSize size;
    std::size_t deepCount; // of images with 16 bits per sample
};

// From the headers alone.
//   sources     at least one
//   leastSide   minimum width and height, pixels
ImageSeries examineSeries(const std::vector<ImageSource>& sources, int leastSide);

// The range that scales the series to 8 bits; nothing if it is left as it is. By default that is an 8-bit series;
// others get their used range, which takes decoding them, or the full one if only some of the images are deep.
std::optional<DepthRange> findRange(const ImageSeries& series, const RangeChoice& choice, LiveLine::Style style);

// For the user: what a range is in values of the images, which go to 255 if none is deep.
DepthRange inUnitOf(const ImageSeries& series, DepthRange range);

struct Frames {
    std::vector<QImage> images; // in the library's frame layout (QImage::Format_BGR888)
    bool grey;                  // all of them were
};

// In order, with a progress bar; decodes on several threads.
//   range   as returned by findRange
Frames readFrames(const ImageSeries& series, const std::optional<DepthRange>& range, LiveLine::Style style);

} // namespace tesmor::apps
