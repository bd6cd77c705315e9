#include "operations/stack_capture.h"

#include "drive/focus_drive.h"
#include "session/result_codes.h"
#include "support/call_recorder.h"
#include "support/library_test.h"
#include "support/scripted_device.h"
#include "support/video_thread.h"

#include <memory>

namespace tesmor::test {

namespace {

class Stack : public LibraryTest {
protected:
    Stack()
    {
        device.reset({0});
        library.commandBlock.command = CMD_STACK;
        library.commandBlock.frameCallback = CallRecorder::onFrame;
        library.commandBlock.context = &recorder;
        library.runFlag = 1;
    }

    void capture(std::uint16_t magnification, std::uint16_t count, std::int32_t spacing, bool notifyOnly = false)
    {
        captureStack(magnification, count, spacing, notifyOnly, CallRecorder::onFrame, &recorder);
        EXPECT_FALSE(device.isOpen());
    }

    CallRecorder recorder;
};

TEST_F(Stack, MovesThenTakesAFrameAndDrivesBack)
{
    VideoThread video(16, 16);
    const Call slice{video.frame(), 16, 16, SUCCESS};
    std::vector<std::size_t> movesBeforeFrame;
    recorder.then = [&](const Call&) { movesBeforeFrame.push_back(device.moves().size()); };
    capture(10, 3, 5);
    EXPECT_EQ(device.moves(), (std::vector{600, 600, 600, -600, -600, -600}));
    EXPECT_EQ(recorder.calls(), (std::vector{slice, slice, slice, report(STACK_DONE)}));
    EXPECT_EQ(movesBeforeFrame, (std::vector<std::size_t>{1, 2, 3, 6}));
}

TEST_F(Stack, StepsByMagnificationAndSpacing)
{
    struct Case {
        std::uint16_t magnification;
        std::int32_t spacing;
        std::int32_t out, back;
    };
    const Case cases[] = {
        {4, 1, 200, -200}, {20, -1, -96, 96},     {40, 2, 96, -96},        {60, 1, 48, -48},
        {100, 1, 48, -48}, {80, 1, 100, -100},    {4, 400, 14464, -14464}, {10, 0, 0, 0},
        {7, 3, 300, -300}, {4, 0x40000000, 0, 0}, {10, INT32_MIN, 0, 0},
    };
    for (const Case& c : cases) {
        const std::size_t before = device.moves().size();
        capture(c.magnification, 1, c.spacing, true);
        EXPECT_EQ(device.moves().at(before), c.out) << c.magnification << ", " << c.spacing;
        EXPECT_EQ(device.moves().at(before + 1), c.back) << c.magnification << ", " << c.spacing;
    }
}

TEST_F(Stack, IsStillConnectedWhileItReportsAndClosesTheDriveOfAManualMove)
{
    library.manualDrive = std::make_unique<FocusDrive>();
    bool openInside = false;
    recorder.then = [&](const Call&) { openInside = device.isOpen(); };
    capture(10, 0, 1);
    EXPECT_TRUE(openInside);
    EXPECT_EQ(library.manualDrive, nullptr);
}

} // namespace

} // namespace tesmor::test
