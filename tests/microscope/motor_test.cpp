#include "microscope/drive/motor.h"

#include <gtest/gtest.h>
#include <vector>

namespace tesmor::microscope {
namespace {

using namespace std::chrono_literals;

struct Case {
    const char* name;
    MotorSettings settings;
    std::int64_t missedSteps; // of each move
    std::vector<std::int64_t> moves;
    std::vector<std::int64_t> positions; // after each
};

TEST(Motor, EndsWhereItsMechanicsLetIt)
{
    const Case cases[] = {
        {"free", {}, 0, {100, -30, 0, -200}, {100, 70, 70, -130}},
        {"end stops", {.lowEnd = -50, .highEnd = 50}, 0, {80, -20, -200, 10}, {50, 30, -50, -40}},
        {"missed steps", {}, 7, {100, -30, 5, -5}, {93, 70, 70, 70}},
    };
    for (const Case& each : cases) {
        Motor motor(each.settings, TimeScale{0}, 0);
        for (std::size_t i = 0; i < each.moves.size(); ++i) {
            motor.move(each.moves[i], each.missedSteps, Clock::time_point{});
            EXPECT_EQ(motor.position(Clock::time_point{}), each.positions[i]) << each.name << ", move " << i;
        }
    }
}

} // namespace
} // namespace tesmor::microscope
