// SPDX-License-Identifier: GPL-2.0-or-later
// A manual move over the system's own drive link, down to the controller.
#include "drive_service/drive_service.h"
#include "microscope/drive/drive_controller.h"
#include "support/call_recorder.h"
#include "support/library_test.h"
#include "tesmor.h"

namespace tesmor::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

const Bytes OPEN{0, 2, 0, 0, 0xD2, 0, 0, 0, 0, 0};
const Bytes CLOSE{0, 2, 0, 0, 0xD3, 0, 0, 0, 0, 0};
const Bytes FORWARD_3200{0, 2, 0, 0, 0xD1, 0, 0x60, 0x00, 0x80, 0x0C};
const Bytes REVERSE_3200{0, 2, 0, 0, 0xD1, 0, 0x60, 0x80, 0x80, 0x0C};

class DriveMoveTest : public LibraryTest {};

TEST_F(DriveMoveTest, SendsItsPacketsToTheFirstUnitThatOpens)
{
    microscope::Motor motor{{.stepsPerSecond = 0}, microscope::TimeScale{1}, 0};
    microscope::AcknowledgementGate gate;
    microscope::DriveController controller{motor, gate};
    const service::DriveService service{controller, 2}; // units 0 and 1 are absent
    CallRecorder recorder;
    ASSERT_EQ(tesmor_init(), 1);
    tesmor_manual(90, CallRecorder::onDone, &recorder);
    tesmor_manual(-90, CallRecorder::onDone, &recorder);
    tesmor_reset();
    waitUntilIdle();
    EXPECT_EQ(recorder.calls(), (std::vector{report(TESMOR_SUCCESS), report(TESMOR_SUCCESS)}));
    EXPECT_EQ(motor.position(microscope::Clock::now()), 0);
    std::vector<Bytes> requests;
    for (const microscope::LoggedRequest& request : controller.log()) {
        EXPECT_EQ(request.code, 0x222059u);
        requests.push_back(request.input);
    }
    EXPECT_EQ(requests, (std::vector<Bytes>{OPEN, FORWARD_3200, CLOSE, OPEN, REVERSE_3200, CLOSE}));
}

} // namespace
} // namespace tesmor::test
