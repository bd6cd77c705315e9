// SPDX-License-Identifier: GPL-2.0-or-later
#include "fusion/smoothing.h"

#include "fusion/cpu_clones.h"

#include <utility>

namespace tesmor {

namespace {

TESMOR_CPU_CLONES void sumThree(const std::int32_t* row, std::int32_t* sums, std::int32_t width) noexcept
{
    for (std::int32_t x = 1; x <= width - 2; ++x)
        sums[x] = row[x - 1] + row[x] + row[x + 1];
}

TESMOR_CPU_CLONES void meanOfNine(const std::int32_t* previous, const std::int32_t* current, const std::int32_t* next,
                                  std::int32_t* row, std::int32_t width) noexcept
{
    for (std::int32_t x = 1; x <= width - 2; ++x)
        row[x] = (previous[x] + current[x] + next[x]) / 9;
}

} // namespace

Smoothing::Smoothing(std::int32_t width, std::int32_t height) noexcept : width_(width), height_(height)
{
    for (auto& sums : rowSums_)
        sums = makePageArray<std::int32_t>(static_cast<std::size_t>(width));
}

bool Smoothing::ready() const noexcept
{
    return rowSums_[0] && rowSums_[1] && rowSums_[2];
}

bool Smoothing::run(std::int32_t* weights, const std::atomic<std::int32_t>& runFlag) noexcept
{
    smoothInterior(weights);
    smoothEdgeRows(weights);
    return smoothEdgeColumns(weights, runFlag);
}

void Smoothing::smoothInterior(std::int32_t* weights) noexcept
{
    if (width_ <= 2 || height_ <= 2)
        return;
    const std::int32_t w = width_;
    std::int32_t* previous = rowSums_[0].get();
    std::int32_t* current = rowSums_[1].get();
    std::int32_t* next = rowSums_[2].get();
    std::int32_t* row = weights + w;
    sumThree(weights, previous, w);
    sumThree(row, current, w);
    for (std::int32_t y = 1; y <= height_ - 2; ++y, row += w) {
        sumThree(row + w, next, w);
        meanOfNine(previous, current, next, row, w);
        std::swap(previous, current);
        std::swap(current, next);
    }
}

// The order counts: the interior next to the edge is smoothed already, and so is the left neighbour in the same row.
void Smoothing::smoothEdgeRows(std::int32_t* weights) const noexcept
{
    const std::int32_t last = width_ - 1;
    std::int32_t* top = weights;
    const std::int32_t* belowTop = weights + width_;
    std::int32_t* bottom = weights + static_cast<std::ptrdiff_t>(height_ - 1) * width_;
    const std::int32_t* aboveBottom = bottom - width_;

    top[0] = (top[0] + belowTop[1] + belowTop[0] + top[1]) / 4;
    top[last] = (top[last - 1] + belowTop[last - 1] + belowTop[last] + top[last]) / 4;
    for (std::int32_t x = 1; x <= last - 1; ++x) {
        top[x] = (top[x - 1] + top[x] + top[x + 1] + belowTop[x - 1] + belowTop[x] + belowTop[x + 1]) / 6;
        bottom[x] =
            (bottom[x - 1] + bottom[x] + bottom[x + 1] + aboveBottom[x - 1] + aboveBottom[x] + aboveBottom[x + 1]) / 6;
    }
    bottom[0] = (bottom[0] + bottom[1] + aboveBottom[0] + aboveBottom[1]) / 4;
    bottom[last] = (aboveBottom[last] + bottom[last - 1] + aboveBottom[last - 1] + bottom[last]) / 4;
}

bool Smoothing::smoothEdgeColumns(std::int32_t* weights, const std::atomic<std::int32_t>& runFlag) const noexcept
{
    const std::int32_t w = width_;
    std::int32_t* row = weights + w;
    for (std::int32_t y = 1; y < height_; ++y, row += w) {
        if (runFlag.load(std::memory_order_relaxed) == 0)
            return false;
        const std::int32_t* above = row - w;
        const std::int32_t* below = row + w;
        row[0] = (above[0] + above[1] + row[0] + row[1] + below[0] + below[1]) / 6;
        row[w - 1] = (above[w - 2] + above[w - 1] + row[w - 2] + row[w - 1] + below[w - 2] + below[w - 1]) / 6;
    }
    return true;
}

} // namespace tesmor
