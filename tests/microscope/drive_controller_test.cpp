// SPDX-License-Identifier: GPL-2.0-or-later
#include "microscope/drive/drive_controller.h"

#include "protocol/drive_request.h"

#include <array>
#include <gtest/gtest.h>
#include <sstream>

namespace tesmor::service {

void PrintTo(Answer answer, std::ostream* out)
{
    *out << std::array{"refused", "accepted", "none", "vanish"}[static_cast<std::size_t>(answer)];
}

} // namespace tesmor::service

namespace tesmor::microscope {
namespace {

using namespace std::chrono_literals;
using Bytes = std::vector<std::uint8_t>;

const Bytes FORWARD_500{0, 2, 0, 0, 0xD1, 0, 0x60, 0, 0xF4, 0x01};
const Bytes ZERO{0, 0, 0, 0};
constexpr auto MOVE_TIME = 500ms;

class DriveControllerTest : public ::testing::Test {
protected:
    Answer request(std::uint32_t code, const Bytes& input)
    {
        return controller_.request(code, input, now_).answer;
    }

    Answer moveForward()
    {
        return request(IOCTL_DRIVE_REQUEST, FORWARD_500);
    }

    std::vector<Event> eventsAfter(std::chrono::milliseconds pause)
    {
        now_ += pause;
        std::vector<Event> events;
        controller_.emitDue(now_, [&](Event event) { events.push_back(event); });
        return events;
    }

    std::int64_t position()
    {
        return motor_.position(now_);
    }

    Clock::time_point now_{1h};
    Motor motor_{{.stepsPerSecond = 1000}, TimeScale{1}, 0};
    AcknowledgementGate gate_;
    DriveController controller_{motor_, gate_};
};

const std::vector<Event> NOTHING;
const std::vector<Event> ACKNOWLEDGED{Event::acknowledgement};

TEST_F(DriveControllerTest, AcknowledgesAMoveAtItsEnd)
{
    EXPECT_EQ(moveForward(), Answer::accepted);
    EXPECT_EQ(controller_.nextEventTime(), now_ + MOVE_TIME);
    EXPECT_EQ(eventsAfter(MOVE_TIME - 1ms), NOTHING);
    EXPECT_EQ(moveForward(), Answer::refused) << "the motor is busy";
    EXPECT_EQ(request(IOCTL_DRIVE_RESET_ACK, ZERO), Answer::accepted);
    EXPECT_EQ(eventsAfter(1ms), ACKNOWLEDGED) << "a reset drops no acknowledgement that is still to come";
    EXPECT_EQ(position(), 500);
    EXPECT_EQ(controller_.nextEventTime(), std::nullopt);

    EXPECT_EQ(request(IOCTL_DRIVE_REQUEST, {0, 2, 0, 0, 0xD1, 0, 0x60, 0x80, 0xFF, 0xFF}), Answer::accepted);
    controller_.forgetEvents();
    EXPECT_EQ(eventsAfter(65535ms), NOTHING) << "its client has gone";
    EXPECT_EQ(position(), 500 - 65535);
}

TEST_F(DriveControllerTest, AFrameThatIsExposedBeforeAnAcknowledgementIsNotDelivered)
{
    const auto ignore = [] {};
    moveForward();
    const std::uint64_t early = gate_.beginExposure();
    EXPECT_TRUE(gate_.deliver(early, ignore));
    eventsAfter(MOVE_TIME);
    EXPECT_FALSE(gate_.deliver(early, ignore));
    EXPECT_TRUE(gate_.deliver(gate_.beginExposure(), ignore));
}

// Each fault, seen by three moves one after the other.
TEST_F(DriveControllerTest, DoesEachFaultAsOftenAsAsked)
{
    struct Case {
        const char* name;
        Faults faults;
        std::string moves; // of each: the answer, the events by the end of the motor's time, the position
    };
    const Case cases[] = {
        {"none", {}, "accepted a 500, accepted a 1000, accepted a 1500"},
        {"refuse moves", {.refuseMoves = 2}, "refused 0, refused 0, accepted a 500"},
        {"refuse all", {.refuseRequests = 1}, "refused 0, accepted a 500, accepted a 1000"},
        {"withhold", {.withholdAcknowledgements = 2}, "accepted 500, accepted 1000, accepted a 1500"},
        {"hang", {.hangRequests = 1}, "none a 500, accepted a 1000, accepted a 1500"},
        {"delay", {.acknowledgementDelay = MOVE_TIME}, "accepted 500, accepted a 1000, accepted a 1500"},
        {"vanish at request", {.vanishAtRequest = true}, "vanish 0, vanish 0, vanish 0"},
        {"vanish before reply", {.vanishBeforeReply = true}, "vanish a 500, vanish 500, vanish 500"},
        {"vanish in move", {.vanishInMove = true}, "accepted v 250, vanish 250, vanish 250"},
    };
    for (const Case& each : cases) {
        motor_.place(0);
        controller_.reappear();
        controller_.setFaults(each.faults);
        std::ostringstream moves;
        for (const char* separator : {"", ", ", ", "}) {
            moves << separator << ::testing::PrintToString(moveForward());
            for (const Event event : eventsAfter(MOVE_TIME))
                moves << (event == Event::acknowledgement ? " a" : " v");
            moves << ' ' << position();
        }
        EXPECT_EQ(moves.str(), each.moves) << each.name;
    }
}

} // namespace
} // namespace tesmor::microscope
