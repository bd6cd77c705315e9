// The worker between commands and around what the host does in its callbacks.
#include "api/result_codes.h"
#include "support/call_recorder.h"
#include "support/library_test.h"
#include "support/scripted_device.h"
#include "support/video_thread.h"

namespace tesmor::test {

namespace {

class Worker : public LibraryTest {
protected:
    Worker()
    {
        device.reset();
        device.existingUnits = device.openingUnits = {0};
        tesmor_init();
    }

    CallRecorder recorder;
};

TEST_F(Worker, IsBusyUntilTheCallbackHasReturned)
{
    std::int32_t doingInside = 0;
    recorder.then = [&](const Call&) { doingInside = tesmor_doing(); };
    tesmor_manual(1.0, CallRecorder::onDone, &recorder);
    waitUntilIdle();
    EXPECT_EQ(recorder.calls(), std::vector{report(SUCCESS)});
    EXPECT_EQ(doingInside, 1);
    EXPECT_EQ(tesmor_doing(), 0);
}

TEST_F(Worker, GoesOnAfterACallbackThatThrows)
{
    const std::vector<std::uint8_t> image(64 * 3 * 8, 50);
    std::vector<std::uint8_t> output(image.size());
    const std::uint8_t* const images[] = {image.data()};
    struct Command {
        const char* name;
        std::function<void(CallRecorder&)> post;
    };
    const Command commands[] = {
        {"manual move", [](CallRecorder& r) { tesmor_manual(1.0, CallRecorder::onDone, &r); }},
        {"stack notice", [](CallRecorder& r) { tesmor_startif(10, 5, 1, CallRecorder::onFrame, &r, 1); }},
        {"stack end", [](CallRecorder& r) { tesmor_startif(10, 0, 1, CallRecorder::onFrame, &r, 0); }},
        {"fusion progress",
         [&](CallRecorder& r) { tesmor_fusion(images, 1, 64, 8, output.data(), CallRecorder::onFrame, &r); }},
        {"fusion end",
         [&](CallRecorder& r) { tesmor_fusion(images, 1, 1, 1, output.data(), CallRecorder::onFrame, &r); }},
    };
    for (const Command& command : commands) {
        CallRecorder throwing;
        throwing.then = [](const Call&) { throw 1; };
        command.post(throwing);
        waitUntilIdle();
        EXPECT_EQ(throwing.calls().size(), 1u) << command.name;
        EXPECT_EQ(tesmor_doing(), 0) << command.name;
        EXPECT_EQ(library.runFlag, 0) << command.name;
        tesmor_reset();
        waitUntilIdle();
        EXPECT_FALSE(device.isOpen()) << command.name;
    }
}

TEST_F(Worker, ResetAndEndCloseTheDriveOfAManualMove)
{
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

TEST_F(Worker, RunsNothingForAnUnknownCommand)
{
    library.idleEvent.wait();
    library.commandBlock.command = static_cast<CommandCode>(8);
    library.runFlag = 1;
    library.commandEvent.set();
    waitUntilIdle();
    EXPECT_EQ(library.runFlag, 0);
    EXPECT_TRUE(device.log().empty());
}

} // namespace

} // namespace tesmor::test
