// The posting handshake: who waits, who aborts, what each post writes.
#include "session/result_codes.h"
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

void setFrameCommand(CommandBlock& b, CommandCode command, std::uint32_t width, std::uint32_t height)
{
    std::tie(b.command, b.doneCallback, b.frameCallback) = std::make_tuple(command, nullptr, onFrame);
    std::tie(b.context, b.width, b.height) = std::make_tuple(&newContext, width, height);
}

const Post posts[] = {
    {"start", [] { return tesmor_start(40, onDone, &newContext); }, 1,
     [](CommandBlock& b) {
         std::tie(b.command, b.angle, b.magnification) = std::make_tuple(CMD_AUTOFOCUS, 0, 40);
         std::tie(b.doneCallback, b.context) = std::make_tuple(onDone, &newContext);
     }},
    {"startif", [] { return tesmor_startif(20, 3, -4, onFrame, &newContext, 5); }, 1,
     [](CommandBlock& b) {
         setFrameCommand(b, CMD_STACK, 0, 0);
         std::tie(b.angle, b.magnification) = std::make_tuple(0, 20);
         std::tie(b.sliceCount, b.sliceSpacing, b.notifyOnly) = std::make_tuple(3, -4, 5);
     }},
    {"capture", [] { return tesmor_capture(onFrame, &newContext); }, 1,
     [](CommandBlock& b) {
         setFrameCommand(b, CMD_CAPTURE, 0, 0);
         std::tie(b.angle, b.magnification) = std::make_tuple(0, 0);
         std::tie(b.sliceCount, b.sliceSpacing, b.notifyOnly) = std::make_tuple(0, 0, 0);
     }},
    {"fusion", [] { return tesmor_fusion(newImages, 2, 30, 40, pixels, onFrame, &newContext); }, 1,
     [](CommandBlock& b) {
         setFrameCommand(b, CMD_FUSION, 30, 40);
         std::tie(b.images[0], b.images[1]) = std::make_tuple(newImages[0], newImages[1]);
         std::tie(b.imageCount, b.output) = std::make_tuple(2, pixels);
     }},
    {"fusion of nothing", [] { return tesmor_fusion(nullptr, 0, 30, 40, pixels, onFrame, &newContext); }, 1,
     [](CommandBlock& b) {
         setFrameCommand(b, CMD_FUSION, 30, 40);
         std::tie(b.imageCount, b.output) = std::make_tuple(0, pixels);
     }},
    {"manual", [] { return tesmor_manual(-2.5, onDone, &newContext); }, 7,
     [](CommandBlock& b) {
         std::tie(b.command, b.angle, b.magnification) = std::make_tuple(CMD_MANUAL, -2.5, 0);
         std::tie(b.doneCallback, b.frameCallback, b.context) = std::make_tuple(onDone, nullptr, &newContext);
     }},
    {"reset", tesmor_reset, 7, [](CommandBlock& b) { b.command = CMD_RESET; }},
    {"stop", tesmor_stop, 1,
     [](CommandBlock& b) { std::tie(b.command, b.angle, b.magnification) = std::make_tuple(CMD_IDLE, 0, 0); }},
    {"fini", tesmor_fini, 1,
     [](CommandBlock& b) { std::tie(b.command, b.angle, b.magnification) = std::make_tuple(CMD_QUIT, 0, 0); }},
};

auto fieldsOf(auto& b)
{
    return std::tie(b.command, b.magnification, b.angle, b.sliceCount, b.sliceSpacing, b.focusValue, b.doneCallback,
                    b.frameCallback, b.context, b.notifyOnly, b.images, b.output, b.imageCount, b.width, b.height);
}

TEST_F(Handshake, EachPostWritesItsOwnFieldsAndNoOther)
{
    for (const Post& post : posts) {
        setUpLibrary(nullptr);
        CommandBlock expected{};
        fieldsOf(expected) = std::make_tuple(
            static_cast<CommandCode>(99), 98, 97, 96, 95, 94, [](void*, std::int32_t) {},
            [](const std::uint8_t*, std::int32_t, std::int32_t, void*, std::int32_t) {}, &expected, 93, expected.images,
            &pixels[1], 90, 89, 88);
        expected.images.fill(&pixels[1]);
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
