// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/demo/plane_folder.h"

#include "host/fusion_job.h"
#include "host/fusion_memory.h"
#include "images/image_series.h"
#include "images/image_sources.h"
#include "images/picture_folder.h"
#include "terminal/errors.h"

#include <algorithm>
#include <cstring>

namespace tesmor::apps {

namespace {

constexpr int LEAST_SIDE = 64; // pixels
constexpr std::size_t FEWEST_PLANES = 2;
constexpr std::size_t MOST_PLANES = 1000;

} // namespace

std::vector<microscope::Image> readPlanes(const QString& folder, LiveLine::Style style)
{
    const std::vector<ImageSource> sources = findImages(pictureFiles(folder), {});
    if (sources.size() < FEWEST_PLANES)
        throw UserError(
            QString("%1: contains %2 of the 2 or more that are needed; add PNG, JPEG, TIFF or BMP photographs of one "
                    "field at different focus positions")
                .arg(folder, sources.empty() ? "none" : "one"));
    if (sources.size() > MOST_PLANES)
        throw UserError(
            QString("%1: contains %2 images; leave at most %3").arg(folder).arg(sources.size()).arg(MOST_PLANES));
    const ImageSeries photos = examineSeries(sources, LEAST_SIDE);
    const QSize size = photos.size;
    // The photographs twice, as read and as planes, and the slices to be merged.
    requireFusionMemory(fusionMemory(size, 2 * sources.size() + MOST_FUSED_IMAGES));

    std::vector<microscope::Image> planes;
    for (const QImage& photo : readFrames(photos, findRange(photos, {}, style), style).images) {
        microscope::Image& plane = planes.emplace_back(size.width(), size.height());
        std::memcpy(plane.pixels.data(), photo.constBits(), plane.pixels.size());
    }
    return planes;
}

} // namespace tesmor::apps
