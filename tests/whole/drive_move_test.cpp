// Manual moves over the system's own drive link, down to the controller.
#include "api/tesmor.h"
#include "drive/focus_drive.h"
#include "microscope/drive_service.h"
#include "support/library_test.h"

#include <future>

namespace tesmor::microscope {
namespace {

using namespace std::chrono_literals;
using Bytes = std::vector<std::uint8_t>;

const Bytes OPEN{0, 2, 0, 0, 0xD2, 0, 0, 0, 0, 0};
const Bytes CLOSE{0, 2, 0, 0, 0xD3, 0, 0, 0, 0, 0};
const Bytes FORWARD_3200{0, 2, 0, 0, 0xD1, 0, 0x60, 0x00, 0x80, 0x0C};
const Bytes REVERSE_3200{0, 2, 0, 0, 0xD1, 0, 0x60, 0x80, 0x80, 0x0C};
const Bytes RESET{0, 0, 0, 0};

class DriveMoveTest : public test::LibraryTest {
protected:
    DriveMoveTest()
    {
        service_.start();
        tesmor_init();
    }

    ~DriveMoveTest() override
    {
        tesmor_reset();
        waitUntilIdle();
    }

    static std::int32_t move(double angle)
    {
        std::promise<std::int32_t> result;
        tesmor_manual(
            angle,
            [](void* context, std::int32_t code) {
                static_cast<std::promise<std::int32_t>*>(context)->set_value(code);
            },
            &result);
        return result.get_future().get();
    }

    std::vector<Bytes> requests() const
    {
        std::vector<Bytes> inputs;
        for (const LoggedRequest& request : controller_.log()) {
            EXPECT_EQ(request.code, request.input.size() == RESET.size() ? 0x222035u : 0x222059u);
            inputs.push_back(request.input);
        }
        return inputs;
    }

    Motor motor_{{.stepsPerSecond = 0}, TimeScale{1}, 0};
    AcknowledgementGate gate_;
    DriveController controller_{motor_, gate_};
    DriveService service_{controller_, 2}; // units 0 and 1 are absent
};

TEST_F(DriveMoveTest, SendsItsPacketsToTheFirstUnitThatOpens)
{
    EXPECT_EQ(move(90), TESMOR_SUCCESS);
    EXPECT_EQ(motor_.position(Clock::now()), 3200);
    EXPECT_EQ(move(-90), TESMOR_SUCCESS);
    tesmor_reset();
    waitUntilIdle();
    EXPECT_EQ(motor_.position(Clock::now()), 0);
    EXPECT_EQ(requests(), (std::vector<Bytes>{OPEN, FORWARD_3200, CLOSE, OPEN, REVERSE_3200, CLOSE}));
}

TEST_F(DriveMoveTest, AsksAgainAndWaitsAgain)
{
    struct Case {
        Faults faults;
        std::int32_t result;
        std::chrono::milliseconds least; // that it takes
        std::vector<Bytes> requests;
    };
    const Case cases[] = {
        {{.refuseMoves = 5},
         TESMOR_MOVE_FAILED,
         5 * 20ms,
         {OPEN, FORWARD_3200, FORWARD_3200, FORWARD_3200, FORWARD_3200, FORWARD_3200}},
        {{.acknowledgementDelay = 1700ms}, TESMOR_SUCCESS, 1700ms, {OPEN, FORWARD_3200, RESET}},
        {{.withholdAcknowledgements = 1},
         TESMOR_MOVE_FAILED,
         5 * 1520ms,
         {OPEN, FORWARD_3200, RESET, RESET, RESET, RESET, RESET}},
    };
    for (const Case& c : cases) {
        tesmor_reset();
        waitUntilIdle();
        controller_.clearLog();
        controller_.setFaults(c.faults);
        const auto start = Clock::now();
        EXPECT_EQ(move(90), c.result);
        const auto taken = Clock::now() - start;
        EXPECT_GE(taken, c.least - 20ms); // the system rounds its waits
        EXPECT_LT(taken, c.least + 3s);
        EXPECT_EQ(requests(), c.requests);
    }
}

// The five reads of the failed move are still waiting when the next move reads.
TEST_F(DriveMoveTest, MovesOnAfterMissingAcknowledgements)
{
    controller_.setFaults({.withholdAcknowledgements = 1});
    FocusDrive drive;
    EXPECT_FALSE(drive.move(100, false));
    for (int i = 0; i < 8; ++i)
        EXPECT_TRUE(drive.move(100, false));
    EXPECT_EQ(motor_.position(Clock::now()), 900);
}

} // namespace
} // namespace tesmor::microscope
