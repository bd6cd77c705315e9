#include "microscope/drive_controller.h"

#include "drive/drive_request.h"

#include <array>
#include <gtest/gtest.h>

namespace tesmor::microscope {

void PrintTo(Answer answer, std::ostream* out)
{
    *out << std::array{"refused", "accepted", "none", "vanish"}[static_cast<std::size_t>(answer)];
}

namespace {

using namespace std::chrono_literals;
using Bytes = std::vector<std::uint8_t>;
using Event = DriveController::Event;

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

TEST_F(DriveControllerTest, AcceptsWellFormedRequestsOnly)
{
    struct Case {
        std::uint32_t code;
        Bytes input;
        Answer answer;
    };
    const Case cases[] = {
        {IOCTL_DRIVE_REQUEST, {0, 2, 0, 0, 0xD2, 0, 0, 0, 0, 0}, Answer::accepted},       // open
        {IOCTL_DRIVE_REQUEST, {0, 2, 0, 0, 0xD3, 0, 0, 0, 0, 0}, Answer::accepted},       // close
        {IOCTL_DRIVE_REQUEST, {0, 2, 0, 0, 0xD1, 0, 0x60, 0x80, 0, 0}, Answer::accepted}, // no step, in reverse
        {IOCTL_DRIVE_RESET_ACK, ZERO, Answer::accepted},
        {IOCTL_DRIVE_REQUEST, {0, 2, 0, 0, 0xD1, 0, 0x61, 0, 0, 0}, Answer::refused},
        {IOCTL_DRIVE_REQUEST, {0, 2, 0, 0, 0xD2, 0, 0, 0, 1, 0}, Answer::refused},
        {IOCTL_DRIVE_REQUEST, {0, 2, 0, 0, 0xD4, 0, 0, 0, 0, 0}, Answer::refused},
        {IOCTL_DRIVE_REQUEST, {0, 3, 0, 0, 0xD2, 0, 0, 0, 0, 0}, Answer::refused},
        {IOCTL_DRIVE_REQUEST, {0, 2, 0, 0, 0xD2, 1, 0, 0, 0, 0}, Answer::refused},
        {IOCTL_DRIVE_REQUEST, {0, 2, 0, 0, 0xD2, 0, 0, 0, 0}, Answer::refused},
        {IOCTL_DRIVE_REQUEST, {0, 2, 0, 0, 0xD2, 0, 0, 0, 0, 0, 0}, Answer::refused},
        {IOCTL_DRIVE_REQUEST, {}, Answer::refused},
        {IOCTL_DRIVE_RESET_ACK, {0, 0, 0}, Answer::refused},
        {IOCTL_DRIVE_RESET_ACK, {0, 0, 0, 1}, Answer::refused},
        {0x222036, ZERO, Answer::refused},
    };
    for (const Case& each : cases)
        EXPECT_EQ(request(each.code, each.input), each.answer) << ::testing::PrintToString(each.input);

    const std::vector<LoggedRequest> log = controller_.log();
    ASSERT_EQ(log.size(), std::size(cases));
    for (std::size_t i = 0; i < log.size(); ++i) {
        EXPECT_EQ(log[i].code, cases[i].code);
        EXPECT_EQ(log[i].input, cases[i].input);
        EXPECT_EQ(log[i].answer, cases[i].answer);
    }
}

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

TEST_F(DriveControllerTest, RemembersTheNewestRequestsAndNotAllForEver)
{
    for (std::uint32_t code = 0; code < 10'010; ++code)
        request(code, ZERO);
    EXPECT_EQ(controller_.log().size(), 10'000u);
    EXPECT_EQ(controller_.log().back().code, 10'009u);
}

// Each fault, seen by three moves one after the other.
TEST_F(DriveControllerTest, DoesEachFaultAsOftenAsAsked)
{
    struct Move {
        Answer answer;
        std::vector<Event> events; // by the end of the motor's time
        std::int64_t position;
    };
    struct Case {
        const char* name;
        Faults faults;
        Move moves[3];
    };
    constexpr Answer yes = Answer::accepted;
    constexpr Answer no = Answer::refused;
    const std::vector<Event> gone{Event::vanish};
    const Case cases[] = {
        {"none", {}, {{yes, ACKNOWLEDGED, 500}, {yes, ACKNOWLEDGED, 1000}, {yes, ACKNOWLEDGED, 1500}}},
        {"refuse moves", {.refuseMoves = 2}, {{no, NOTHING, 0}, {no, NOTHING, 0}, {yes, ACKNOWLEDGED, 500}}},
        {"refuse all", {.refuseRequests = 1}, {{no, NOTHING, 0}, {yes, ACKNOWLEDGED, 500}, {yes, ACKNOWLEDGED, 1000}}},
        {"withhold",
         {.withholdAcknowledgements = 2},
         {{yes, NOTHING, 500}, {yes, NOTHING, 1000}, {yes, ACKNOWLEDGED, 1500}}},
        {"hang",
         {.hangRequests = 1},
         {{Answer::none, ACKNOWLEDGED, 500}, {yes, ACKNOWLEDGED, 1000}, {yes, ACKNOWLEDGED, 1500}}},
        {"miss", {.missSteps = 800}, {{yes, ACKNOWLEDGED, 0}, {yes, ACKNOWLEDGED, 200}, {yes, ACKNOWLEDGED, 700}}},
        {"delay",
         {.acknowledgementDelay = MOVE_TIME},
         {{yes, NOTHING, 500}, {yes, ACKNOWLEDGED, 1000}, {yes, ACKNOWLEDGED, 1500}}},
        {"vanish at request",
         {.vanishAtRequest = true},
         {{Answer::vanish, NOTHING, 0}, {Answer::vanish, NOTHING, 0}, {Answer::vanish, NOTHING, 0}}},
        {"vanish before reply",
         {.vanishBeforeReply = true},
         {{Answer::vanish, ACKNOWLEDGED, 500}, {Answer::vanish, NOTHING, 500}, {Answer::vanish, NOTHING, 500}}},
        {"vanish in move",
         {.vanishInMove = true},
         {{yes, gone, 250}, {Answer::vanish, NOTHING, 250}, {Answer::vanish, NOTHING, 250}}},
    };
    for (const Case& each : cases) {
        motor_.place(0);
        controller_.reappear();
        controller_.setFaults(each.faults);
        for (const Move& move : each.moves) {
            EXPECT_EQ(moveForward(), move.answer) << each.name;
            EXPECT_EQ(eventsAfter(MOVE_TIME), move.events) << each.name;
            EXPECT_EQ(position(), move.position) << each.name;
        }
    }
}

} // namespace
} // namespace tesmor::microscope
