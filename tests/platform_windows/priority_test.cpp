// SPDX-License-Identifier: GPL-2.0-or-later
// The worker's priority around a fusion.
#include "support/call_recorder.h"
#include "support/library_test.h"

namespace tesmor::test {
namespace {

class PriorityTest : public LibraryTest {};

TEST_F(PriorityTest, IsIdleDuringAFusionAndRestored)
{
    std::vector<int> duringProgress;
    int afterwards = THREAD_PRIORITY_ERROR_RETURN;
    CallRecorder recorder;
    recorder.then = [&](const Call& call) {
        if (call.image)
            afterwards = GetThreadPriority(GetCurrentThread());
        else
            duringProgress.push_back(GetThreadPriority(GetCurrentThread()));
    };
    const std::vector<std::uint8_t> image(8 * 24);
    std::vector<std::uint8_t> output(image.size());
    const std::uint8_t* const images[] = {image.data()};
    ASSERT_EQ(tesmor_init(), 1);
    tesmor_fusion(images, 1, 8, 8, output.data(), CallRecorder::onFrame, &recorder);
    waitUntilIdle();
    EXPECT_EQ(duringProgress, std::vector<int>(5, -15));
    EXPECT_EQ(afterwards, THREAD_PRIORITY_NORMAL);
}

} // namespace
} // namespace tesmor::test
