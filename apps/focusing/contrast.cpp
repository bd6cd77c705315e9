// SPDX-License-Identifier: GPL-2.0-or-later
#include "focusing/contrast.h"

#include "protocol/central_region.h"
#include "protocol/frame_layout.h"

#include <algorithm>
#include <cmath>

namespace tesmor::apps {

double contrastOf(const std::uint8_t* pixels, int width, int height, std::uint16_t magnification)
{
    const Region region = centralRegion(width, height, magnification);
    const double count = static_cast<double>(region.width) * region.height;
    if (count == 0)
        return 0;
    double sum = 0;
    double squares = 0;
    for (int y = region.top; y < region.top + region.height; ++y) {
        const std::uint8_t* pixel = pixels + rowBytes(width) * y + 3 * static_cast<std::ptrdiff_t>(region.left);
        for (int x = 0; x < region.width; ++x, pixel += 3) {
            const double brightness = 0.114 * pixel[0] + 0.587 * pixel[1] + 0.299 * pixel[2];
            sum += brightness;
            squares += brightness * brightness;
        }
    }
    return std::sqrt(std::max(0.0, squares / count - sum / count * (sum / count)));
}

} // namespace tesmor::apps
