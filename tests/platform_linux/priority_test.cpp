// The worker's priority around a fusion, with and without the right to come back from the idle priority.
#include "support/call_recorder.h"
#include "support/library_test.h"

#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tesmor::test {

namespace {

struct Policies {
    std::vector<int> duringProgress;
    int afterwards = -1;
};

Policies policiesOfAFusion()
{
    Policies policies;
    CallRecorder recorder;
    recorder.then = [&](const Call& call) {
        if (call.image)
            policies.afterwards = sched_getscheduler(0);
        else
            policies.duringProgress.push_back(sched_getscheduler(0));
    };
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

TEST(Priority, IsIdleDuringAFusionAndRestoredForAPrivilegedProcess)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "needs the right to lower nice values";
    const Policies policies = policiesOfAFusion();
    EXPECT_EQ(policies.duringProgress, std::vector<int>(5, SCHED_IDLE));
    EXPECT_EQ(policies.afterwards, SCHED_OTHER);
}

TEST(Priority, IsLoweredOnlyAsFarAsAnUnprivilegedProcessMayComeBack)
{
    const pid_t child = fork();
    if (child == 0) {
        if (geteuid() == 0 && setuid(65534) != 0)
            _exit(1);
        const Policies policies = policiesOfAFusion();
        const bool lowered = policies.duringProgress == std::vector<int>(5, SCHED_BATCH);
        _exit(lowered && policies.afterwards == SCHED_OTHER ? 0 : 2);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

} // namespace

} // namespace tesmor::test
