#include "operations/manual_move.h"

#include "drive/focus_drive.h"
#include "session/result_codes.h"
#include "support/call_recorder.h"
#include "support/library_test.h"
#include "support/scripted_device.h"

namespace tesmor::test {

namespace {

class ManualMove : public LibraryTest {
protected:
    ManualMove()
    {
        device.reset({0});
    }

    std::vector<Call> turn(double angle)
    {
        CallRecorder recorder;
        manualMove(angle, CallRecorder::onDone, &recorder);
        return recorder.calls();
    }
};

TEST_F(ManualMove, TurnsDegreesIntoSteps)
{
    const std::pair<double, std::int32_t> cases[] = {
        {90, 3200}, {-90, -3200}, {1, 35},     {-1, -35},    {0.02, 0},
        {0, 0},     {-0.02, 0},   {1843.2, 0}, {1900, 2019}, {2000, 5575},
    };
    for (const auto& [angle, steps] : cases) {
        EXPECT_EQ(turn(angle), std::vector{report(SUCCESS)}) << angle;
        EXPECT_EQ(device.moves().back(), steps) << angle;
    }
}

TEST_F(ManualMove, KeepsTheDriveOpenUntilTheNextOne)
{
    turn(1);
    EXPECT_TRUE(device.isOpen());
    turn(1);
    EXPECT_TRUE(device.isOpen());
    std::string requests;
    for (const std::string& line : device.log()) {
        if (line.starts_with("request"))
            requests += line.substr(19, 3);
    }
    EXPECT_EQ(requests, " D2 D1 D3 D2 D1");
}

TEST_F(ManualMove, ResetAndEndCloseItsDrive)
{
    tesmor_init();
    for (const auto close : {tesmor_reset, tesmor_fini}) {
        tesmor_manual(1.0, nullptr, nullptr);
        waitUntilIdle();
        EXPECT_TRUE(device.isOpen());
        close();
        if (library.workerHandle)
            waitUntilIdle();
        EXPECT_FALSE(device.isOpen());
    }
}

} // namespace

} // namespace tesmor::test
