// The worker between commands and around what the host does in its callbacks.
#include "api/result_codes.h"
#include "support/call_recorder.h"
#include "support/library_test.h"
#include "support/scripted_device.h"

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
