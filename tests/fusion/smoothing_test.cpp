#include "fusion/smoothing.h"

#include "fusion/plain_fusion.h"

#include <gtest/gtest.h>
#include <random>

namespace tesmor::test {

namespace {

using Values = std::vector<std::int32_t>;

Values smoothed(Values measure, int width, int height)
{
    const std::atomic<std::int32_t> runFlag{1};
    measure.resize(static_cast<std::size_t>(width * (height + 2)));
    EXPECT_TRUE(Smoothing(width, height).run(measure.data(), runFlag));
    EXPECT_EQ(Values(measure.end() - 2 * width, measure.end()), Values(static_cast<std::size_t>(2 * width)));
    measure.resize(static_cast<std::size_t>(width * height));
    return measure;
}

TEST(Smoothing, RunsInTheStatedOrder)
{
    EXPECT_EQ(smoothed({40, 80, 120, 160}, 2, 2), (Values{100, 115, 77, 69}));
    EXPECT_EQ(smoothed({0, 0, 0, 0, 9000, 0, 0, 0, 0}, 3, 3), (Values{250, 250, 250, 326, 1000, 326, 297, 166, 297}));
}

TEST(Smoothing, EqualsThePlainOneAtAnySize)
{
    std::mt19937 random(1);
    for (const auto& [width, height] : {std::pair{2, 9}, {9, 2}, {3, 2}, {2, 3}, {4, 3}, {3, 7}, {16, 5}, {17, 23}}) {
        Values measure(static_cast<std::size_t>(width * height));
        for (auto& value : measure)
            value = static_cast<std::int32_t>(random() % 195076);
        EXPECT_EQ(smoothed(measure, width, height), plainSmoothing(measure, width, height)) << width << " x " << height;
    }
}

TEST(Smoothing, StopsWhenItIsAborted)
{
    const std::atomic<std::int32_t> runFlag{0};
    Values measure(5 * 7);
    EXPECT_FALSE(Smoothing(5, 5).run(measure.data(), runFlag));
}

} // namespace

} // namespace tesmor::test
