// SPDX-License-Identifier: GPL-2.0-or-later
// The search's moves over sharpness curves that matter, each worked out by hand.
#include "operations/autofocus_search.h"

#include "drive/focus_drive.h"
#include "support/scripted_frames.h"

#include <cmath>
#include <gtest/gtest.h>
#include <sstream>

namespace tesmor::test {

namespace {

class Search : public ::testing::Test {
protected:
    std::int32_t search(std::uint16_t magnification)
    {
        system.reset({0});
        frames.positions.clear();
        FocusDrive drive(system, system);
        return autofocusSearch(drive, frames, magnification);
    }

    ScriptedSystem system;
    ScriptedFrames frames{system};
};

// "3x4000 -8000" as {4000, 4000, 4000, -8000}.
std::vector<std::int32_t> movesOf(const std::string& text)
{
    std::vector<std::int32_t> moves;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        const auto cross = word.find('x');
        const int count = cross == std::string::npos ? 1 : std::stoi(word.substr(0, cross));
        moves.insert(moves.end(), static_cast<std::size_t>(count),
                     std::stoi(word.substr(cross == std::string::npos ? 0 : cross + 1)));
    }
    return moves;
}

double peakAt(std::int64_t peak, std::int64_t position)
{
    return -static_cast<double>(std::llabs(position - peak));
}

TEST_F(Search, MovesAsTheCurveTellsIt)
{
    struct Case {
        const char* name;
        std::uint16_t magnification;
        std::function<double(std::int64_t)> sharpness;
        std::string moves;
    };
    const Case cases[] = {
        {"flat: ties go on, the first comparison is a fall", 4, [](std::int64_t) { return 1.0; },
         "3x4000 6x-4000 12000 4x4000 -8000 4x-4000 8000 4x800 -1600 1600"},
        // Turned at 2560, two steps back is 1920; from there the fine sweep runs away from the peak and keeps its
        // start.
        {"peak forward", 40, [](std::int64_t x) { return peakAt(2000, x); },
         "3x320 6x-320 960 8x320 -640 4x-64 128 128"},
        {"peak in reverse: sweeps on from the far end", 40, [](std::int64_t x) { return peakAt(-2000, x); },
         "3x320 6x-320 5x-320 640 4x64 -128 -128"},
        // A fall slower than the rise is noticed a step later: the fine sweep crosses the peak, from 2240 to 1984, and
        // of 2048 and 1984 beside it the former is the sharper.
        {"peak between fine steps", 40,
         [](std::int64_t x) { return x < 2000 ? 10 * peakAt(2000, x) : peakAt(2000, x); },
         "3x320 6x-320 960 9x320 -640 4x-64 128 -64"},
        // Forward looks no worse at the ends of the probe, but the sharpness falls from the start on.
        {"wrong way first", 40, [](std::int64_t x) { return x == 960 || x == -960 ? 5.0 : peakAt(-700, x); },
         "3x320 6x-320 960 4x320 -640 6x-320 640 4x64 -128 -128"},
    };
    for (const Case& c : cases) {
        frames.sharpness = c.sharpness;
        EXPECT_EQ(search(c.magnification), TESMOR_SUCCESS) << c.name;
        EXPECT_EQ(system.moves(), movesOf(c.moves)) << c.name;
    }
}

TEST_F(Search, TakesStepsOfTheMagnification)
{
    const std::pair<std::uint16_t, std::int32_t> coarseSteps[] = {
        {4, 4000}, {10, 1000}, {20, 640}, {40, 320}, {60, 320}, {80, 1500}, {100, 320}, {0, 1500}, {101, 1500},
    };
    for (const auto& [magnification, step] : coarseSteps) {
        EXPECT_EQ(search(magnification), TESMOR_SUCCESS);
        EXPECT_EQ(system.moves().size(), 26u) << magnification;
        EXPECT_EQ(system.moves().front(), step) << magnification;
        EXPECT_EQ(system.moves().at(20), step / 5) << magnification;
    }
}

TEST_F(Search, ClimbsPastItsRangeAsLongAsTheSharpnessRises)
{
    frames.sharpness = [](std::int64_t x) { return static_cast<double>(x); };
    frames.goodWaits = 199;
    frames.then = {TESMOR_ABORTED, std::nullopt};
    EXPECT_EQ(search(40), TESMOR_ABORTED);
    EXPECT_EQ(system.position(), (200 - 8) * 320) << "every wait after the probe's 7 and the start's is a step";
}

TEST_F(Search, ReturnsToTheStartOfTheFineSweepWhenNothingReachesIt)
{
    // Seen from the sweep back, the one sharp place is where the fine sweep begins.
    frames.sharpness = [](std::int64_t x) { return x == 960 ? 9.0 : peakAt(960, x); };
    EXPECT_EQ(search(40), TESMOR_SUCCESS);
    EXPECT_EQ(system.position(), 960);
}

TEST_F(Search, EndsAtTheFrameThatFindsAnotherCommand)
{
    search(40);
    const auto allWaits = static_cast<int>(frames.positions.size());
    for (frames.goodWaits = 0; frames.goodWaits < allWaits; ++frames.goodWaits) {
        EXPECT_EQ(search(40), TESMOR_SUCCESS);
        EXPECT_EQ(frames.positions.size(), static_cast<std::size_t>(frames.goodWaits) + 1);
    }
}

} // namespace

} // namespace tesmor::test
