// SPDX-License-Identifier: GPL-2.0-or-later
#include "fusion/weighted_mean.h"

#include "fusion/cpu_clones.h"
#include "fusion/plane_rows.h"

namespace tesmor {

namespace {

// A weight of 0 counts as 1, so that every image counts everywhere. Without __restrict there are too many pairs of
// arrays to tell apart for vector code.
TESMOR_CPU_CLONES void addWeighted(const std::uint8_t* row, const std::int32_t* weights, std::size_t width,
                                   std::int32_t* __restrict weightSum, float* __restrict blue, float* __restrict green,
                                   float* __restrict red) noexcept
{
    for (std::size_t x = 0; x < width; ++x) {
        const std::int32_t weight = weights[x] == 0 ? 1 : weights[x];
        weightSum[x] += weight;
        blue[x] += static_cast<float>(compressHighlight(row[3 * x]) * weight);
        green[x] += static_cast<float>(compressHighlight(row[3 * x + 1]) * weight);
        red[x] += static_cast<float>(compressHighlight(row[3 * x + 2]) * weight);
    }
}

} // namespace

WeightedMean::WeightedMean(const ImageLayout& layout) noexcept
    : layout_(layout), weightSum_(makePageArray<std::int32_t>(layout.pixelCount()))
{
    for (auto& sums : sums_)
        sums = makePageArray<float>(layout.pixelCount());
}

bool WeightedMean::ready() const noexcept
{
    return weightSum_ && sums_[0] && sums_[1] && sums_[2];
}

void WeightedMean::addRow(std::int32_t y, const std::uint8_t* imageRow, const std::int32_t* weights) noexcept
{
    const std::size_t first = firstOfRow(y);
    addWeighted(imageRow, weights, static_cast<std::size_t>(layout_.width), weightSum_.get() + first,
                sums_[0].get() + first, sums_[1].get() + first, sums_[2].get() + first);
}

void WeightedMean::loadRow(std::int32_t y, std::size_t colour, double* row) const noexcept
{
    loadMeans(sums_[colour].get() + firstOfRow(y), weightSum_.get() + firstOfRow(y), layout_.width, row);
}

} // namespace tesmor
