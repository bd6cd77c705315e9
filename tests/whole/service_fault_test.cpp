// SPDX-License-Identifier: GPL-2.0-or-later
// The whole library on the real link: a drive service that fails in every way, early and late in every
// operation that moves the focus.
#include "microscope/virtual_microscope.h"
#include "support/call_recorder.h"
#include "support/library_test.h"

#include <optional>

namespace tesmor::test {

namespace {

using microscope::Faults;
using microscope::VirtualMicroscope;
using namespace std::chrono_literals;

struct Operation {
    const char* name;
    void (*post)(CallRecorder&);
    std::int32_t success;
    std::vector<int> phases; // 0: before the drive is opened; n: before frame number n
};

const Operation OPERATIONS[] = {
    {"manual move", [](CallRecorder& r) { tesmor_manual(90, CallRecorder::onDone, &r); }, TESMOR_SUCCESS, {0}},
    {"autofocus", [](CallRecorder& r) { tesmor_start(40, CallRecorder::onDone, &r); }, TESMOR_SUCCESS, {0, 4, 12}},
    {"stack",
     [](CallRecorder& r) { tesmor_startif(10, 3, 1, CallRecorder::onFrame, &r, 0); },
     TESMOR_STACK_DONE,
     {0, 1, 3}},
};

struct Fault {
    const char* name;
    Faults faults;
    bool isFatal; // the operation fails, else it succeeds
};

const Fault FAULTS[] = {
    {"refuses a move", {.refuseMoves = 1}, false},
    {"refuses every move", {.refuseMoves = 5}, true},
    {"refuses any request", {.refuseRequests = 1}, false},
    {"sends rubbish", {.rubbishReplies = 1000}, false},
    {"acknowledges late", {.acknowledgementDelay = 20ms}, false},
    {"hangs", {.hangRequests = 1}, true},
    {"goes at a request", {.vanishAtRequest = true}, true},
    {"goes before a reply", {.vanishBeforeReply = true}, true},
    {"goes in a move", {.vanishInMove = true}, true},
};

class ServiceFaults : public LibraryTest {
protected:
    ServiceFaults()
    {
        microscope::Settings settings;
        settings.width = settings.height = 64;
        settings.framesPerSecond = 0;
        settings.timeScale = 0;
        microscope.emplace(settings);
        tesmor_init();
    }

    // Each frame as it is asked for; the fault is switched on in phase `at`.
    void run(const Operation& operation, const Fault& fault, int at)
    {
        microscope->start([](const auto& frame) { tesmor_video(frame.pixels, frame.width, frame.height); });
        CallRecorder recorder;
        if (at == 0)
            microscope->setFaults(fault.faults);
        operation.post(recorder);
        const auto hasEnded = [&] {
            const auto calls = recorder.calls();
            return !calls.empty() && !calls.back().image;
        };
        int frames = 0;
        EXPECT_TRUE(eventually([&] {
            if (session.frameRequest == 1) {
                if (++frames == at)
                    microscope->setFaults(fault.faults);
                microscope->deliverFrame();
            }
            return hasEnded();
        }));
        waitUntilIdle();
        EXPECT_EQ(recorder.calls().back(), report(fault.isFatal ? TESMOR_MOVE_FAILED : operation.success));
        microscope->stop();
        microscope->setFaults({});
        expectReadyForTheNextCommand();
    }

    std::optional<VirtualMicroscope> microscope;

private:
    void expectReadyForTheNextCommand()
    {
        EXPECT_EQ(tesmor_doing(), 0);
        microscope->start({});
        CallRecorder next;
        tesmor_manual(1, CallRecorder::onDone, &next);
        tesmor_reset();
        waitUntilIdle();
        EXPECT_EQ(next.calls(), std::vector{report(TESMOR_SUCCESS)});
        microscope->stop();
    }
};

TEST_F(ServiceFaults, EachEarlyAndLateInEachOperation)
{
    int cells = 0;
    for (const Operation& operation : OPERATIONS) {
        for (const Fault& fault : FAULTS) {
            for (const int at : operation.phases) {
                SCOPED_TRACE(std::string(operation.name) + ", the service " + fault.name + " at " + std::to_string(at));
                run(operation, fault, at);
                ++cells;
                ASSERT_FALSE(HasFailure());
            }
        }
    }
    RecordProperty("cells", cells);
    std::printf("%d cells\n", cells);
}

} // namespace

} // namespace tesmor::test
