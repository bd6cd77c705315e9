// The exchange of a frame between the hook and the wait.
#include "frames/frame_hook.h"
#include "frames/frame_wait.h"
#include "measure/focus_measure.h"
#include "session/result_codes.h"
#include "support/call_recorder.h"
#include "support/library_test.h"
#include "support/scripted_clock.h"
#include "support/video_thread.h"

namespace tesmor::test {

namespace {

class Frames : public LibraryTest {
protected:
    Frames()
    {
        library.commandBlock.context = &recorder;
        library.commandBlock.frameCallback = CallRecorder::onFrame;
        library.runFlag = 1;
    }

    ~Frames() override
    {
        clockSpeed = 1;
    }

    CallRecorder recorder;
    const std::vector<std::uint8_t> frame = std::vector<std::uint8_t>(16 * 16 * 3, 9);
};

TEST_F(Frames, ARequestIsServedOnceAndSignalledAfterTheCallback)
{
    for (const CommandCode command : {CMD_CAPTURE, CMD_STACK}) {
        CallRecorder captured;
        bool signalledInside = true;
        captured.then = [&](const Call&) { signalledInside = library.frameEvent.waitFor(0); };
        library.commandBlock.command = command;
        library.commandBlock.context = &captured;
        library.frameEvent.reset();
        library.frameRequest = 1;
        handleFrame(frame.data(), 16, 16);
        handleFrame(frame.data(), 16, 16);
        EXPECT_EQ(captured.calls(), (std::vector{Call{frame.data(), 16, 16, SUCCESS}}));
        EXPECT_FALSE(signalledInside);
        EXPECT_TRUE(library.frameEvent.waitFor(0));
    }
}

TEST_F(Frames, AnAutofocusFrameIsMeasured)
{
    std::vector<std::uint8_t> checkered = frame;
    checkered[(8 * 16 + 8) * 3] = 200;
    library.commandBlock.command = CMD_AUTOFOCUS;
    library.commandBlock.magnification = 40;
    library.frameRequest = 1;
    handleFrame(checkered.data(), 16, 16);
    EXPECT_GT(library.commandBlock.focusValue, 0.0);
    EXPECT_EQ(library.commandBlock.focusValue, measureFocus(checkered.data(), 16, 16, 40, library.lumaTables));
    EXPECT_TRUE(library.frameEvent.waitFor(0));
    EXPECT_TRUE(recorder.calls().empty());
}

TEST_F(Frames, AFrameForNoCommandTakesTheRequestAndSignalsNothing)
{
    library.commandBlock.command = CMD_IDLE;
    library.frameEvent.reset();
    library.frameRequest = 1;
    handleFrame(frame.data(), 16, 16);
    EXPECT_EQ(library.frameRequest, 0);
    EXPECT_FALSE(library.frameEvent.waitFor(0));
}

TEST_F(Frames, ARequestThatIsGivenUpIsNotServedForTheNextCommand)
{
    library.commandBlock.command = CMD_STACK;
    library.frameRequest = 1;
    library.commandLock.lock();
    std::jthread video([&] { handleFrame(frame.data(), 16, 16); });
    for (int i = 0; i < 10'000 && library.frameRequest == 1; ++i)
        std::this_thread::yield(); // a hook that takes the request too early gets the time for it
    library.frameRequest = 0;
    library.commandLock.unlock();
    video.join();
    EXPECT_TRUE(recorder.calls().empty());
}

TEST_F(Frames, TheWaitTakesNoSignalFromBefore)
{
    clockSpeed = 50;
    library.frameEvent.set();
    EXPECT_EQ(waitForFrame(), NO_FRAME);
    EXPECT_EQ(library.runFlag, 0);
    EXPECT_EQ(library.frameRequest, 0);
    EXPECT_EQ(waitForFrame(), ABORTED) << "a time-out ends the whole command";
}

TEST_F(Frames, TheWaitTakesNoSignalOfARequestThatWasGivenUp)
{
    library.commandBlock.command = CMD_STACK;
    std::atomic<bool> ended{false};
    std::size_t framesBefore = 0;
    std::jthread worker([&] {
        EXPECT_EQ(waitForFrame(), SUCCESS);
        framesBefore = recorder.calls().size();
        ended = true;
    });
    ASSERT_TRUE(eventually([] { return library.frameRequest == 1; }));
    library.frameEvent.set(); // by a hook that was held up in the callback of the command before
    for (int i = 0; i < 10'000 && !ended; ++i)
        std::this_thread::yield();
    handleFrame(frame.data(), 16, 16);
    worker.join();
    EXPECT_EQ(framesBefore, 1u);
}

TEST_F(Frames, TheWaitGivesUpOnlyAfterMoreThanFourSeconds)
{
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(waitForFrame(), NO_FRAME);
    EXPECT_GT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(4000));
}

} // namespace

} // namespace tesmor::test
