// SPDX-License-Identifier: GPL-2.0-or-later
// The exchange of a frame between the hook and the wait, on a clock that stands still unless it is told to go on.
#include "frames/frame_hook.h"
#include "frames/frame_wait.h"
#include "measure/focus_measure.h"
#include "support/call_recorder.h"
#include "support/scripted_system.h"

#include <gtest/gtest.h>

namespace tesmor::test {

namespace {

class FrameExchange : public ::testing::Test {
protected:
    FrameExchange()
    {
        session.commandBlock.context = &recorder;
        session.commandBlock.frameCallback = CallRecorder::onFrame;
        session.runFlag = 1;
        system.inWait = [this] {
            ++waits;
            if (waits == serveAt)
                deliver();
        };
    }

    void deliver()
    {
        handleFrame(session, frame.data(), 16, 16);
    }

    Session session;
    ScriptedSystem system;
    FrameWait frames{session, system};
    CallRecorder recorder;
    std::vector<std::uint8_t> frame = std::vector<std::uint8_t>(16 * 16 * 3, 9);
    int waits = 0;
    int serveAt = 1;
};

TEST_F(FrameExchange, ARequestIsServedOnceAndSignalledAfterTheCallback)
{
    for (const CommandCode command : {CMD_CAPTURE, CMD_STACK}) {
        CallRecorder captured;
        bool signalledInside = true;
        captured.then = [&](const Call&) { signalledInside = session.frameEvent.waitFor(0); };
        session.commandBlock.command = command;
        session.commandBlock.context = &captured;
        session.frameEvent.reset();
        session.frameRequest = 1;
        deliver();
        deliver();
        EXPECT_EQ(captured.calls(), (std::vector{Call{frame.data(), 16, 16, TESMOR_SUCCESS}}));
        EXPECT_FALSE(signalledInside);
        EXPECT_TRUE(session.frameEvent.waitFor(0));
    }
}

TEST_F(FrameExchange, AnAutofocusFrameIsMeasuredAndItsSharpnessReturned)
{
    frame[(8 * 16 + 8) * 3] = 200;
    session.commandBlock.command = CMD_AUTOFOCUS;
    session.commandBlock.magnification = 40;
    const FrameReply reply = frames.next();
    EXPECT_EQ(reply.result, TESMOR_SUCCESS);
    EXPECT_EQ(reply.sharpness, measureFocus(frame.data(), 16, 16, 40, session.lumaTables));
    EXPECT_GT(session.commandBlock.focusValue, 0.0);
    EXPECT_TRUE(recorder.calls().empty());
}

TEST_F(FrameExchange, SharpnessIsOfTheAutofocusThatIsPosted)
{
    session.commandBlock.command = CMD_AUTOFOCUS;
    system.inWait = [this] {
        deliver();
        session.commandBlock.command = CMD_IDLE;
    };
    const FrameReply reply = frames.next();
    EXPECT_EQ(reply.result, TESMOR_SUCCESS);
    EXPECT_EQ(reply.sharpness, std::nullopt);
}

TEST_F(FrameExchange, AFrameForNoCommandTakesTheRequestAndSignalsNothing)
{
    session.frameEvent.reset();
    session.frameRequest = 1;
    deliver();
    EXPECT_EQ(session.frameRequest, 0);
    EXPECT_FALSE(session.frameEvent.waitFor(0));
}

TEST_F(FrameExchange, ARequestThatIsGivenUpIsNotServedForTheNextCommand)
{
    session.commandBlock.command = CMD_STACK;
    serveFrame(session, frame.data(), 16, 16); // the hook had seen the request, and then it was withdrawn
    EXPECT_TRUE(recorder.calls().empty());
}

TEST_F(FrameExchange, TheWaitTakesNoSignalFromBefore)
{
    serveAt = 0;
    system.timePasses = true;
    session.frameEvent.set();
    EXPECT_EQ(frames.next().result, TESMOR_NO_FRAME);
    EXPECT_EQ(waits, 32) << "slices of 128 ms until more than 4000 have passed";
    EXPECT_EQ(session.runFlag, 0);
    EXPECT_EQ(session.frameRequest, 0);
    EXPECT_EQ(frames.next().result, TESMOR_ABORTED) << "a time-out ends the whole command";
}

TEST_F(FrameExchange, TheWaitTakesNoSignalOfARequestThatWasGivenUp)
{
    session.commandBlock.command = CMD_STACK;
    system.inWait = [this] {
        if (++waits == 1)
            session.frameEvent.set(); // by a hook that was held up in the callback of the command before
        else
            deliver();
    };
    EXPECT_EQ(frames.next().result, TESMOR_SUCCESS);
    EXPECT_EQ(waits, 2);
}

TEST_F(FrameExchange, FourSecondsAreNotYetTooLong)
{
    session.commandBlock.command = CMD_STACK;
    serveAt = 2;
    const auto serve = system.inWait;
    system.inWait = [this, serve] {
        system.sleepMilliseconds(waits == 0 ? 4000 : 0);
        serve();
    };
    EXPECT_EQ(frames.next().result, TESMOR_SUCCESS);
    EXPECT_EQ(waits, 2);
}

} // namespace

} // namespace tesmor::test
