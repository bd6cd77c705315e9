// SPDX-License-Identifier: GPL-2.0-or-later
// One pass of the 3 x 3 mean that smooths the weights of an image.
#pragma once

#include "fusion/page_array.h"

#include <atomic>
#include <cstdint>

namespace tesmor {

// Smooths in place: the interior is a true 3 x 3 mean of the values before the pass, the edge rows and columns are
// recursive means of six, the corners of four. The column step runs on into the first of two slack rows, which stay 0:
// so both bottom corners end as means of six with two zeros among them.
// All sums are 32-bit, all divisions truncate.
class Smoothing {
public:
    // width, height: of the image, at least 2.
    Smoothing(std::int32_t width, std::int32_t height) noexcept;

    // Whether the three row buffers could be obtained.
    bool ready() const noexcept;

    // weights: height + 2 rows of width values, the last two of them 0. False when `runFlag` fell to 0 meanwhile.
    bool run(std::int32_t* weights, const std::atomic<std::int32_t>& runFlag) noexcept;

private:
    void smoothInterior(std::int32_t* weights) noexcept;
    void smoothEdgeRows(std::int32_t* weights) const noexcept;
    bool smoothEdgeColumns(std::int32_t* weights, const std::atomic<std::int32_t>& runFlag) const noexcept;

    std::int32_t width_;
    std::int32_t height_;
    PageArray<std::int32_t> rowSums_[3]; // horizontal 3-sums of the previous, current and next row
};

} // namespace tesmor
