// SPDX-License-Identifier: GPL-2.0-or-later
// The posting handshake: who waits, who aborts.
#include "support/call_recorder.h"
#include "support/library_test.h"

#include <future>

namespace tesmor::test {

namespace {

class Handshake : public ScriptedLibraryTest {
protected:
    CallRecorder recorder;
};

TEST_F(Handshake, FirstPostWithoutWorkerReturnsTheSecondWaitsForOne)
{
    EXPECT_NE(tesmor_manual(1, CallRecorder::onDone, &recorder), 0);
    auto second = std::async(std::launch::async, tesmor_manual, 2.0, CallRecorder::onDone, &recorder);
    EXPECT_EQ(tesmor_init(), 1);
    EXPECT_NE(second.get(), 0);
    waitUntilIdle();
    EXPECT_EQ(recorder.calls().size(), 2u) << "the second has not overwritten the first";
}

TEST_F(Handshake, TheLibraryStartsAgainAfterItsEnd)
{
    for (int round = 0; round < 3; ++round) {
        ASSERT_EQ(tesmor_init(), 1);
        tesmor_manual(1.0, CallRecorder::onDone, &recorder);
        EXPECT_NE(tesmor_fini(), 0);
        EXPECT_FALSE(hasWorker());
        EXPECT_EQ(session.commandBlock.command, CMD_QUIT);
        EXPECT_EQ(session.runFlag, 1);
    }
    EXPECT_EQ(recorder.calls(), std::vector<Call>(3, report(TESMOR_NO_DRIVE)));
}

// Without a worker, so that nothing is taken back.
TEST_F(Handshake, EachPostWakesTheWorkerAndThoseThatCanBeAbortedRaiseTheFlag)
{
    struct Post {
        const char* name;
        std::int32_t (*post)();
        std::int32_t runFlagAfter;
    };
    const Post posts[] = {
        {"start", [] { return tesmor_start(40, nullptr, nullptr); }, 1},
        {"startif", [] { return tesmor_startif(20, 3, -4, nullptr, nullptr, 0); }, 1},
        {"capture", [] { return tesmor_capture(nullptr, nullptr); }, 1},
        {"fusion", [] { return tesmor_fusion(nullptr, 0, 30, 40, nullptr, nullptr, nullptr); }, 1},
        {"stop", tesmor_stop, 1},
        {"fini", tesmor_fini, 1},
        {"manual", [] { return tesmor_manual(-2.5, nullptr, nullptr); }, 7},
        {"reset", tesmor_reset, 7},
    };
    for (const Post& post : posts) {
        session.idleEvent.set();
        session.runFlag = 7;
        EXPECT_NE(post.post(), 0) << post.name;
        EXPECT_EQ(session.runFlag, post.runFlagAfter) << post.name;
        EXPECT_TRUE(session.commandEvent.waitFor(0)) << post.name;
        EXPECT_FALSE(session.idleEvent.waitFor(0)) << post.name;
    }
}

} // namespace

} // namespace tesmor::test
