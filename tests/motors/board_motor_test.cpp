// SPDX-License-Identifier: GPL-2.0-or-later
// Motors on serial boards, behind the drive service: as a client on the link sees them.
#include "drive/gcode_motor.h"
#include "drive/motor_runner.h"
#include "drive/sangaboard_motor.h"
#include "microscope/virtual_microscope.h"
#include "motors/fake_board.h"
#include "motors/link_packets.h"
#include "support/call_recorder.h"
#include "support/library_test.h"

namespace tesmor::test {
namespace {

using namespace drive;
using namespace std::chrono_literals;

// A board with its motor and service, as tesmor-drive has them.
struct Driven {
    explicit Driven(Firmware firmware, const MotorRunner::Settings& settings = {}, unsigned unit = UNIT,
                    std::function<void(std::int64_t)> onPosition = {})
        : board(firmware, std::move(onPosition)), motor(makeMotor(firmware)), file("test")
    {
        motor->connect();
        runner.emplace(*motor, file, settings);
        service.emplace(*runner, unit);
    }

    std::unique_ptr<Motor> makeMotor(Firmware firmware) const
    {
        if (firmware == Firmware::sangaboard)
            return std::make_unique<SangaboardMotor>(SangaboardSettings{.port = board.port()});
        return std::make_unique<GcodeMotor>(
            GcodeSettings{.port = board.port(), .stepsPerMm = FakeBoard::STEPS_PER_MM, .feed = 600});
    }

    FakeBoard board;
    std::unique_ptr<Motor> motor;
    PositionFile file;
    std::optional<MotorRunner> runner;
    std::optional<service::DriveService> service;
};

class BoardMotorTest : public MotorTest, public ::testing::WithParamInterface<Firmware> {};

INSTANTIATE_TEST_SUITE_P(Boards, BoardMotorTest,
                         ::testing::Values(Firmware::grbl, Firmware::marlin, Firmware::sangaboard));

TEST_P(BoardMotorTest, RepliesAtOnceAndAcknowledgesWhenTheMotorStands)
{
    Driven driven(GetParam());
    const RawClient client(UNIT);
    EXPECT_EQ(client.ask(OPEN), ACCEPTED);
    driven.board.hold(true);
    EXPECT_EQ(client.ask(FORWARD_1000), ACCEPTED);
    EXPECT_EQ(client.ask(REVERSE_1000), REFUSED) << "the motor turns";
    EXPECT_EQ(client.ask(RESET), RESET_ACCEPTED) << "and no acknowledgement yet";
    driven.board.hold(false);
    EXPECT_EQ(client.receive(), ACKNOWLEDGEMENT);
    EXPECT_EQ(driven.board.position(), 1000);
    EXPECT_EQ(driven.file.read(), 1000);

    driven.board.hold(true);
    EXPECT_EQ(client.ask(REVERSE_1000), ACCEPTED);
    std::jthread release([&] { driven.board.hold(false); });
    driven.runner->rest();
    EXPECT_EQ(client.receive(), ACKNOWLEDGEMENT) << "the move in hand ends before the program";
    EXPECT_EQ(client.ask(FORWARD_1000), REFUSED);
    EXPECT_EQ(driven.board.position(), 0);
}

TEST_P(BoardMotorTest, TellsTheClientOfEachFaultAndWorksAgainAfterIt)
{
    struct Case {
        const char* name;
        BoardFault fault;
        bool inMove; // its link is then cut
    };
    const Case cases[] = {
        {"refuses", BoardFault::refuse, false},
        {"says nothing", BoardFault::silent, false},
        {"says half a line", BoardFault::halfALine, false},
        {"says rubbish", BoardFault::rubbish, false},
        {"begins anew", BoardFault::beginAnew, true},
        {"is pulled out", BoardFault::unplug, true},
    };
    Driven driven(GetParam());
    for (const Case& each : cases) {
        if (GetParam() == Firmware::sangaboard && !each.inMove)
            continue; // it tells nothing before a move has ended
        SCOPED_TRACE(each.name);
        driven.board.hold(each.inMove);
        if (!each.inMove)
            driven.board.set(each.fault);
        {
            const RawClient client(UNIT);
            EXPECT_EQ(client.ask(OPEN), ACCEPTED);
            EXPECT_EQ(client.ask(FORWARD_1000), each.inMove ? ACCEPTED : REFUSED);
            if (each.inMove) {
                driven.board.set(each.fault);
                EXPECT_EQ(client.receive(), END_OF_FILE);
            }
        }
        driven.board.hold(false);
        driven.board.set(BoardFault::none);
        const RawClient next(UNIT);
        EXPECT_TRUE(eventually([&] { return next.ask(FORWARD_1000) == ACCEPTED; }));
        EXPECT_EQ(next.receive(), ACKNOWLEDGEMENT);
    }
}

TEST_F(MotorTest, DropsTheAcknowledgementOfAClientThatHasGone)
{
    Driven driven(Firmware::grbl);
    driven.board.hold(true);
    EXPECT_EQ(RawClient(UNIT).ask(FORWARD_1000), ACCEPTED);
    const RawClient next(UNIT);
    EXPECT_EQ(next.ask(OPEN), ACCEPTED);
    driven.board.hold(false);
    std::optional<Packet> reply;
    EXPECT_TRUE(eventually([&] { return (reply = next.ask(REVERSE_1000)) != REFUSED; }));
    EXPECT_EQ(reply, ACCEPTED);
    EXPECT_EQ(next.receive(), ACKNOWLEDGEMENT);
    EXPECT_EQ(driven.board.position(), 0);
}

TEST_F(MotorTest, RefusesToPassASoftEndAndKeepsGearAndBacklash)
{
    Driven driven(
        Firmware::marlin,
        {.travel = {.gearMotor = 1, .gearLink = 3, .reversed = true, .backlash = 30, .low = -500, .high = 10'000}});
    const RawClient client(UNIT);
    const auto move = [&](const Packet& request, int times) {
        for (int i = 0; i < times; ++i) {
            EXPECT_EQ(client.ask(request), ACCEPTED);
            EXPECT_EQ(client.receive(), ACKNOWLEDGEMENT);
        }
    };
    EXPECT_EQ(client.ask(REVERSE_1000), REFUSED);
    move(FORWARD_1000, 10);
    EXPECT_EQ(driven.board.position(), -3333);
    EXPECT_EQ(client.ask(FORWARD_1000), REFUSED);
    const int turns = driven.board.turns();
    move(REVERSE_1000, 10);
    EXPECT_EQ(driven.board.position(), 0) << "where it began, with all that the gear left over";
    EXPECT_EQ(driven.board.turns(), turns + 20) << "each too far and back";
}

// The library, the link, the service and a board, whose motor is the focus of the virtual microscope's optics.
class WholeChainTest : public LibraryTest {
protected:
    void run(void (*post)(CallRecorder&), std::int32_t result, std::int64_t start, microscope::VirtualMicroscope& scope)
    {
        CallRecorder recorder;
        post(recorder);
        EXPECT_TRUE(eventually([&] {
            if (session.frameRequest == 1)
                scope.deliverFrame();
            const auto calls = recorder.calls();
            return !calls.empty() && !calls.back().image;
        })) << start;
        waitUntilIdle();
        EXPECT_EQ(recorder.calls().back(), report(result));
    }
};

TEST_F(WholeChainTest, FocusesAndCapturesAStack)
{
    microscope::Settings settings;
    settings.width = 320;
    settings.height = 240;
    settings.timeScale = settings.framesPerSecond = 0;
    settings.unit = 5; // its own motor is not used: the library takes the lowest unit
    microscope::VirtualMicroscope scope(settings);
    const auto start = static_cast<std::int64_t>(scope.bestFocus()) + 2500;
    scope.setPosition(start);
    scope.start([](const microscope::Frame& frame) { tesmor_video(frame.pixels, frame.width, frame.height); });
    Driven driven(Firmware::grbl, {}, 0, [&](std::int64_t position) { scope.setPosition(start + position); });
    ASSERT_EQ(tesmor_init(), 1);

    run([](CallRecorder& r) { tesmor_start(10, CallRecorder::onDone, &r); }, TESMOR_SUCCESS, start, scope);
    EXPECT_NEAR(static_cast<double>(scope.position()), scope.bestFocus(), scope.depthOfField());
    const std::int64_t focus = scope.position();
    run([](CallRecorder& r) { tesmor_startif(10, 5, 2, CallRecorder::onFrame, &r, 0); }, TESMOR_STACK_DONE, start,
        scope);
    EXPECT_EQ(scope.position(), focus);
    driven.board.set(BoardFault::unplug);
    run([](CallRecorder& r) { tesmor_start(10, CallRecorder::onDone, &r); }, TESMOR_MOVE_FAILED, start, scope);
}

} // namespace
} // namespace tesmor::test
