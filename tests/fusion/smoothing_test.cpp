// SPDX-License-Identifier: GPL-2.0-or-later
#include "fusion/smoothing.h"

#include <gtest/gtest.h>

namespace tesmor::test {

namespace {

using Values = std::vector<std::int32_t>;

Values smoothed(Values weights, int width, int height)
{
    const std::atomic<std::int32_t> runFlag{1};
    weights.resize(static_cast<std::size_t>(width * (height + 2)));
    EXPECT_TRUE(Smoothing(width, height).run(weights.data(), runFlag));
    EXPECT_EQ(Values(weights.end() - 2 * width, weights.end()), Values(static_cast<std::size_t>(2 * width)));
    weights.resize(static_cast<std::size_t>(width * height));
    return weights;
}

TEST(Smoothing, RunsInTheStatedOrder)
{
    EXPECT_EQ(smoothed({40, 80, 120, 160}, 2, 2), (Values{100, 115, 77, 69}));
    EXPECT_EQ(smoothed({0, 0, 0, 0, 9000, 0, 0, 0, 0}, 3, 3), (Values{250, 250, 250, 326, 1000, 326, 297, 166, 297}));
}

} // namespace

} // namespace tesmor::test
