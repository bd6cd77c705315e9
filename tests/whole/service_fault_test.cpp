// The whole library on the real link: a drive service that fails in every way, early and late in every
// operation that moves the focus.
#include "microscope/virtual_microscope.h"
#include "session/result_codes.h"
#include "support/call_recorder.h"
#include "support/library_test.h"

#include <optional>

namespace tesmor::test {

namespace {

using microscope::Faults;
using microscope::VirtualMicroscope;
using std::chrono::steady_clock;
using namespace std::chrono_literals;

struct Operation {
    const char* name;
    void (*post)(CallRecorder&);
    std::int32_t success;
    std::vector<int> phases; // 0: before the drive is opened; n: before frame number n
};

const Operation OPERATIONS[] = {
    {"manual move", [](CallRecorder& r) { tesmor_manual(90, CallRecorder::onDone, &r); }, SUCCESS, {0}},
    {"autofocus", [](CallRecorder& r) { tesmor_start(40, CallRecorder::onDone, &r); }, SUCCESS, {0, 4, 12}},
    {"stack", [](CallRecorder& r) { tesmor_startif(10, 3, 1, CallRecorder::onFrame, &r, 0); }, STACK_DONE, {0, 1, 3}},
};

struct Fault {
    const char* name;
    Faults faults;
    bool isFatal;                   // the operation fails, else it succeeds
    std::chrono::milliseconds time; // that it costs the operation at most, five seconds for a busy machine included
};

const Fault FAULTS[] = {
    {"refuses a move", {.refuseMoves = 1}, false, 20ms + 5s},
    {"refuses every move", {.refuseMoves = 5}, true, 100ms + 5s},
    {"refuses any request", {.refuseRequests = 1}, false, 20ms + 5s},
    {"sends rubbish", {.rubbishReplies = 1000}, false, 5s},
    {"acknowledges late", {.acknowledgementDelay = 20ms}, false, 30 * 20ms + 5s},
    {"hangs", {.hangRequests = 1}, true, 1000ms + 100ms + 5s},
    {"goes at a request", {.vanishAtRequest = true}, true, 100ms + 5s},
    {"goes before a reply", {.vanishBeforeReply = true}, true, 100ms + 5s},
    {"goes in a move", {.vanishInMove = true}, true, 100ms + 5s},
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
        const auto start = steady_clock::now();
        if (at == 0)
            microscope->setFaults(fault.faults);
        operation.post(recorder);
        const auto hasEnded = [&] {
            const auto calls = recorder.calls();
            return !calls.empty() && !calls.back().image;
        };
        int frames = 0;
        EXPECT_TRUE(eventually([&] {
            if (library.frameRequest == 1) {
                if (++frames == at)
                    microscope->setFaults(fault.faults);
                microscope->deliverFrame();
            }
            return hasEnded();
        }));
        waitUntilIdle();
        EXPECT_LT(steady_clock::now() - start, fault.time);
        EXPECT_EQ(recorder.calls().back(), report(fault.isFatal ? MOVE_FAILED : operation.success));
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
        EXPECT_EQ(next.calls(), std::vector{report(SUCCESS)});
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
