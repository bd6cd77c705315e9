// The worker's priority around a fusion, with and without the right to come back from the idle priority.
#include "support/call_recorder.h"
#include "support/child_process.h"
#include "support/library_test.h"

#include <sched.h>

namespace tesmor::test {

namespace {

// During each report, the last one with the image.
std::vector<int> policiesOfAFusion()
{
    std::vector<int> policies;
    CallRecorder recorder;
    recorder.then = [&](const Call&) { policies.push_back(sched_getscheduler(0)); };
    const std::vector<std::uint8_t> image(8 * 24);
    std::vector<std::uint8_t> output(image.size());
    const std::uint8_t* const images[] = {image.data()};
    setUpLibrary(nullptr);
    tesmor_init();
    tesmor_fusion(images, 1, 8, 8, output.data(), CallRecorder::onFrame, &recorder);
    tesmor_reset(); // waits for the fusion
    tesmor_fini();
    return policies;
}

// Of a fusion of one image: five reports, and the end.
std::vector<int> expected(int policy)
{
    return {policy, policy, policy, policy, policy, SCHED_OTHER};
}

TEST(Priority, IsIdleDuringAFusionAndRestoredForAPrivilegedProcess)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "needs the right to lower nice values";
    EXPECT_EQ(policiesOfAFusion(), expected(SCHED_IDLE));
}

TEST(Priority, IsLoweredOnlyAsFarAsAnUnprivilegedProcessMayComeBack)
{
    const int end = endOfChild([] {
        if (geteuid() == 0 && setuid(NOBODY) != 0)
            return 1;
        return policiesOfAFusion() == expected(SCHED_BATCH) ? 0 : 2;
    });
    EXPECT_EQ(end, 0);
}

} // namespace

} // namespace tesmor::test
