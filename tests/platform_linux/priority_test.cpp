// SPDX-License-Identifier: GPL-2.0-or-later
// The worker's priority around a fusion: as low as the process may come back from.
#include "support/call_recorder.h"
#include "support/child_process.h"
#include "support/library_test.h"

#include <sched.h>
#include <sys/resource.h>

namespace tesmor::test {

namespace {

struct Scheduling {
    int policy;
    int priority;
    int nice;

    bool operator==(const Scheduling&) const = default;

    static Scheduling now()
    {
        sched_param parameters{};
        sched_getparam(0, &parameters);
        return {sched_getscheduler(0), parameters.sched_priority, getpriority(PRIO_PROCESS, 0)};
    }

    bool apply() const
    {
        const sched_param parameters{priority};
        return setpriority(PRIO_PROCESS, 0, nice) == 0 && sched_setscheduler(0, policy, &parameters) == 0;
    }
};

// During each report, the last one with the image.
std::vector<Scheduling> schedulingOfAFusion()
{
    std::vector<Scheduling> all;
    CallRecorder recorder;
    recorder.then = [&](const Call&) { all.push_back(Scheduling::now()); };
    const std::vector<std::uint8_t> image(8 * 24);
    std::vector<std::uint8_t> output(image.size());
    const std::uint8_t* const images[] = {image.data()};
    setUpLibrary(nullptr, platform::systemDriveUnits(), platform::systemClock());
    tesmor_init();
    tesmor_fusion(images, 1, 8, 8, output.data(), CallRecorder::onFrame, &recorder);
    tesmor_reset(); // waits for the fusion
    tesmor_fini();
    return all;
}

struct Case {
    Scheduling creator; // of the thread that calls tesmor_init
    rlim_t niceLimit;
    rlim_t realTimeLimit;
    int privilegedPolicy; // during the fusion, for a process that may pass its limits
    int ordinaryPolicy;   // and for one that may not
};

constexpr rlim_t FOR_NICE_0 = 20;
constexpr rlim_t EVERY_NICE = 40;

const Case cases[] = {
    {{SCHED_OTHER, 0, 0}, 0, 0, SCHED_IDLE, SCHED_BATCH},
    {{SCHED_OTHER, 0, 0}, FOR_NICE_0, 0, SCHED_IDLE, SCHED_IDLE},
    {{SCHED_OTHER, 0, -5}, FOR_NICE_0, 0, SCHED_IDLE, SCHED_BATCH},
    {{SCHED_OTHER, 0, -20}, 0, 0, SCHED_IDLE, SCHED_BATCH},
    {{SCHED_BATCH, 0, 3}, 0, 0, SCHED_IDLE, SCHED_BATCH},
    {{SCHED_IDLE, 0, 0}, 0, 0, SCHED_IDLE, SCHED_IDLE},
    {{SCHED_FIFO, 7, 0}, 0, 0, SCHED_IDLE, SCHED_FIFO},
    {{SCHED_FIFO, 7, 0}, 0, 7, SCHED_IDLE, SCHED_BATCH},
    {{SCHED_RR, 7, 0}, FOR_NICE_0, 7, SCHED_IDLE, SCHED_IDLE},
    {{SCHED_RR, 7, 0}, EVERY_NICE, 6, SCHED_IDLE, SCHED_RR},
    {{SCHED_FIFO, 99, 0}, 0, 0, SCHED_IDLE, SCHED_FIFO},
};

enum Outcome { asExpected, other, limitsCannotBeSet };

Outcome outcomeOf(const Case& c, bool privileged)
{
    const rlimit nice{c.niceLimit, c.niceLimit};
    const rlimit realTime{c.realTimeLimit, c.realTimeLimit};
    if (setrlimit(RLIMIT_NICE, &nice) != 0 || setrlimit(RLIMIT_RTPRIO, &realTime) != 0)
        return limitsCannotBeSet;
    if (!c.creator.apply() || (!privileged && setuid(NOBODY) != 0))
        return other;
    Scheduling during = c.creator;
    during.policy = privileged ? c.privilegedPolicy : c.ordinaryPolicy;
    if (during.policy != c.creator.policy)
        during.priority = 0;
    std::vector<Scheduling> expected(5, during); // a fusion of one image reports five times before its end
    expected.push_back(c.creator);
    return schedulingOfAFusion() == expected ? asExpected : other;
}

TEST(Priority, IsLoweredAsFarAsTheProcessMayComeBackAndRestored)
{
    if (geteuid() != 0 || !endOfChild([] { return Scheduling{SCHED_FIFO, 1, -1}.apply(); }))
        GTEST_SKIP() << "only root with CAP_SYS_NICE can play both";
    schedulingOfAFusion(); // once, so that FFTW knows its plan in every child
    int leftOut = 0;
    for (const Case& c : cases) {
        for (const bool privileged : {true, false}) {
            const int outcome = endOfChild([&] { return outcomeOf(c, privileged); });
            leftOut += outcome == limitsCannotBeSet;
            EXPECT_NE(outcome, other) << "policy " << c.creator.policy << " nice " << c.creator.nice << " limits "
                                      << c.niceLimit << " and " << c.realTimeLimit
                                      << (privileged ? ", privileged" : "");
        }
    }
    if (leftOut > 0)
        std::printf("%d cases left out: this process may not raise its limits\n", leftOut);
    EXPECT_LT(leftOut, 2 * static_cast<int>(std::size(cases)));
}

TEST(Priority, IsLoweredAndRestoredForWhoeverRunsThis)
{
    const std::vector<Scheduling> all = schedulingOfAFusion();
    ASSERT_EQ(all.size(), 6u);
    EXPECT_NE(all[0].policy, SCHED_OTHER);
    EXPECT_EQ(all[5], Scheduling::now());
}

} // namespace

} // namespace tesmor::test
