// The posting handshake: who waits, who aborts, what each post writes.
#include "api/result_codes.h"
#include "support/call_recorder.h"
#include "support/library_test.h"
#include "support/scripted_device.h"

#include <future>

namespace tesmor::test {

namespace {

class Handshake : public LibraryTest {
protected:
    Handshake()
    {
        device.reset();
    }

    CallRecorder recorder;
};

bool isDoneWithin(std::future<std::int32_t>& post, std::chrono::milliseconds time)
{
    return post.wait_for(time) == std::future_status::ready;
}

TEST_F(Handshake, FirstPostWithoutWorkerReturnsTheSecondWaitsForOne)
{
    EXPECT_NE(tesmor_reset(), 0);
    auto second = std::async(std::launch::async, tesmor_reset);
    EXPECT_FALSE(isDoneWithin(second, std::chrono::milliseconds(50)));
    EXPECT_EQ(tesmor_init(), 1);
    EXPECT_NE(second.get(), 0);
}

TEST_F(Handshake, EveryPostIsRunOnceUnderContention)
{
    constexpr int threads = 4;
    constexpr int postsPerThread = 200;
    ASSERT_EQ(tesmor_init(), 1);
    std::vector<std::jthread> posters;
    for (int i = 0; i < threads; ++i) {
        posters.emplace_back([this] {
            for (int post = 0; post < postsPerThread; ++post)
                tesmor_manual(1.0, CallRecorder::onDone, &recorder);
        });
    }
    posters.clear();
    waitUntilIdle();
    EXPECT_EQ(recorder.calls(), std::vector<Call>(threads * postsPerThread, report(NO_DRIVE)));
}

TEST_F(Handshake, StopEndsAWaitForFramesAndReportsBeforeItReturns)
{
    device.existingUnits = device.openingUnits = {0};
    ASSERT_EQ(tesmor_init(), 1);
    tesmor_start(10, CallRecorder::onDone, &recorder);
    ASSERT_TRUE(eventually([] { return library.frameRequest == 1; }));
    EXPECT_EQ(tesmor_doing(), 1);
    EXPECT_NE(tesmor_stop(), 0);
    EXPECT_EQ(recorder.calls(), std::vector{report(ABORTED)});
    EXPECT_EQ(tesmor_doing(), 0);
    EXPECT_EQ(library.frameRequest, 0);
    EXPECT_FALSE(device.isOpen());
}

TEST_F(Handshake, ManualMoveWaitsForTheRunningCommandInsteadOfAbortingIt)
{
    ASSERT_EQ(tesmor_init(), 1);
    tesmor_capture(CallRecorder::onFrame, &recorder);
    ASSERT_TRUE(eventually([] { return library.frameRequest == 1; }));
    auto move = std::async(std::launch::async, [] { return tesmor_manual(1.0, nullptr, nullptr); });
    EXPECT_FALSE(isDoneWithin(move, std::chrono::milliseconds(200)));
    const std::uint8_t frame[4 * 12] = {};
    tesmor_video(frame, 4, 4);
    EXPECT_NE(move.get(), 0);
    EXPECT_EQ(recorder.calls(), (std::vector{Call{frame, 4, 4, SUCCESS}}));
}

TEST_F(Handshake, TheLibraryStartsAgainAfterItsEnd)
{
    for (int round = 0; round < 3; ++round) {
        ASSERT_EQ(tesmor_init(), 1);
        tesmor_manual(1.0, CallRecorder::onDone, &recorder);
        EXPECT_NE(tesmor_fini(), 0);
        EXPECT_EQ(library.workerHandle, nullptr);
        EXPECT_EQ(library.commandBlock.command, CMD_QUIT);
        EXPECT_EQ(library.runFlag, 1);
    }
    EXPECT_EQ(recorder.calls(), std::vector<Call>(3, report(NO_DRIVE)));
}

// Posted without a worker, so that the block can be looked at; every field starts from a value that is seen to stay.
struct Post {
    const char* name;
    std::int32_t (*post)();
    std::int32_t runFlagAfter;
    void (*expect)(CommandBlock& block);
};

void onDone(void*, std::int32_t) {}
void onFrame(const std::uint8_t*, std::int32_t, std::int32_t, void*, std::int32_t) {}
int newContext;
std::uint8_t pixels[2];
const std::uint8_t* const newImages[] = {&pixels[0], &pixels[1]};

const Post posts[] = {
    {"start", [] { return tesmor_start(40, onDone, &newContext); }, 1,
     [](CommandBlock& block) {
         block.command = CMD_AUTOFOCUS;
         block.angle = 0;
         block.magnification = 40;
         block.doneCallback = onDone;
         block.context = &newContext;
     }},
    {"startif", [] { return tesmor_startif(20, 3, -4, onFrame, &newContext, 5); }, 1,
     [](CommandBlock& block) {
         block.command = CMD_STACK;
         block.angle = 0;
         block.magnification = 20;
         block.sliceCount = 3;
         block.sliceSpacing = -4;
         block.notifyOnly = 5;
         block.frameCallback = onFrame;
         block.context = &newContext;
         block.doneCallback = nullptr;
         block.width = block.height = 0;
     }},
    {"capture", [] { return tesmor_capture(onFrame, &newContext); }, 1,
     [](CommandBlock& block) {
         block.command = CMD_CAPTURE;
         block.angle = 0;
         block.magnification = 0;
         block.sliceCount = 0;
         block.sliceSpacing = 0;
         block.notifyOnly = 0;
         block.doneCallback = nullptr;
         block.frameCallback = onFrame;
         block.context = &newContext;
         block.width = block.height = 0;
     }},
    {"fusion", [] { return tesmor_fusion(newImages, 2, 30, 40, pixels, onFrame, &newContext); }, 1,
     [](CommandBlock& block) {
         block.command = CMD_FUSION;
         block.doneCallback = nullptr;
         block.frameCallback = onFrame;
         block.context = &newContext;
         block.images[0] = newImages[0];
         block.images[1] = newImages[1];
         block.output = pixels;
         block.imageCount = 2;
         block.width = 30;
         block.height = 40;
     }},
    {"fusion of nothing", [] { return tesmor_fusion(nullptr, 0, 30, 40, pixels, onFrame, &newContext); }, 1,
     [](CommandBlock& block) {
         block.command = CMD_FUSION;
         block.doneCallback = nullptr;
         block.frameCallback = onFrame;
         block.context = &newContext;
         block.output = pixels;
         block.imageCount = 0;
         block.width = 30;
         block.height = 40;
     }},
    {"manual", [] { return tesmor_manual(-2.5, onDone, &newContext); }, 7,
     [](CommandBlock& block) {
         block.command = CMD_MANUAL;
         block.angle = -2.5;
         block.magnification = 0;
         block.doneCallback = onDone;
         block.frameCallback = nullptr;
         block.context = &newContext;
     }},
    {"reset", [] { return tesmor_reset(); }, 7, [](CommandBlock& block) { block.command = CMD_RESET; }},
    {"stop", [] { return tesmor_stop(); }, 1,
     [](CommandBlock& block) {
         block.command = CMD_IDLE;
         block.angle = 0;
         block.magnification = 0;
     }},
    {"fini", [] { return tesmor_fini(); }, 1,
     [](CommandBlock& block) {
         block.command = CMD_QUIT;
         block.angle = 0;
         block.magnification = 0;
     }},
};

CommandBlock blockOfAnEarlierCommand()
{
    CommandBlock block{};
    block.command = static_cast<CommandCode>(99);
    block.magnification = 98;
    block.angle = 97;
    block.sliceCount = 96;
    block.sliceSpacing = 95;
    block.focusValue = 94;
    block.doneCallback = [](void*, std::int32_t) {};
    block.frameCallback = [](const std::uint8_t*, std::int32_t, std::int32_t, void*, std::int32_t) {};
    block.context = &block;
    block.notifyOnly = 93;
    block.images.fill(reinterpret_cast<const std::uint8_t*>(92));
    block.output = reinterpret_cast<std::uint8_t*>(91);
    block.imageCount = 90;
    block.width = 89;
    block.height = 88;
    return block;
}

auto fieldsOf(const CommandBlock& b)
{
    return std::tie(b.command, b.magnification, b.angle, b.sliceCount, b.sliceSpacing, b.focusValue, b.doneCallback,
                    b.frameCallback, b.context, b.notifyOnly, b.images, b.output, b.imageCount, b.width, b.height);
}

TEST_F(Handshake, EachPostWritesItsOwnFieldsAndNoOther)
{
    for (const Post& post : posts) {
        setUpLibrary(nullptr);
        CommandBlock expected = blockOfAnEarlierCommand();
        library.commandBlock = expected;
        library.runFlag = 7;
        EXPECT_NE(post.post(), 0) << post.name;
        post.expect(expected);
        EXPECT_EQ(fieldsOf(library.commandBlock), fieldsOf(expected)) << post.name;
        EXPECT_EQ(library.runFlag, post.runFlagAfter) << post.name;
        EXPECT_TRUE(library.commandEvent.waitFor(0)) << post.name;
        EXPECT_FALSE(library.idleEvent.waitFor(0)) << post.name;
    }
}

TEST_F(Handshake, CancelPostsIdleTwiceAndClearsTheStack)
{
    ASSERT_EQ(tesmor_init(), 1);
    library.commandBlock.sliceCount = 9;
    library.commandBlock.sliceSpacing = 9;
    EXPECT_NE(tesmor_cancelif(), 0);
    waitUntilIdle();
    EXPECT_EQ(library.commandBlock.command, CMD_IDLE);
    EXPECT_EQ(library.commandBlock.sliceCount, 0);
    EXPECT_EQ(library.commandBlock.sliceSpacing, 0);
}

} // namespace

} // namespace tesmor::test
