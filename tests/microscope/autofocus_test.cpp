// SPDX-License-Identifier: GPL-2.0-or-later
// The whole way: the library's autofocus over the drive's own link, with the camera's frames.
#include "microscope/virtual_microscope.h"
#include "operations/search_profile.h"
#include "support/call_recorder.h"
#include "support/library_test.h"
#include "tesmor.h"

#include <cmath>

namespace tesmor::microscope {
namespace {

class AutofocusTest : public test::LibraryTest {
protected:
    static Settings settings(std::uint16_t magnification)
    {
        Settings settings;
        settings.magnification = magnification;
        settings.width = 320;
        settings.height = 240;
        settings.timeScale = 0;
        return settings;
    }

    static void sink(const Frame& frame)
    {
        tesmor_video(frame.pixels, frame.width, frame.height);
    }

    std::int32_t focus(std::uint16_t magnification)
    {
        test::CallRecorder recorder;
        tesmor_start(magnification, test::CallRecorder::onDone, &recorder);
        waitUntilIdle();
        return recorder.calls().at(0).result;
    }
};

TEST_F(AutofocusTest, EndsWithinOneDepthOfFieldOfTheTruth)
{
    ASSERT_EQ(tesmor_init(), 1);
    for (const std::uint16_t magnification : std::initializer_list<std::uint16_t>{4, 10, 20, 40, 60, 100}) {
        VirtualMicroscope microscope(settings(magnification));
        microscope.start(sink);
        for (const double coarseSteps : {-6.6, 7.3}) {
            const double offset = coarseSteps * searchProfile(magnification).searchRange / 10;
            microscope.setPosition(std::llround(microscope.bestFocus() + offset));
            EXPECT_EQ(focus(magnification), TESMOR_SUCCESS);
            EXPECT_NEAR(static_cast<double>(microscope.position()), microscope.bestFocus(), microscope.depthOfField())
                << magnification << "x from " << offset;
        }
    }
}

TEST_F(AutofocusTest, HearsOfADriveThatVanishes)
{
    ASSERT_EQ(tesmor_init(), 1);
    Settings vanishing = settings(10);
    vanishing.faults.vanishInMove = true;
    VirtualMicroscope microscope(vanishing);
    microscope.start(sink);
    EXPECT_EQ(focus(10), TESMOR_MOVE_FAILED);
    EXPECT_TRUE(microscope.driveHasVanished());
    EXPECT_EQ(focus(10), TESMOR_NO_DRIVE);
    microscope.stop();
    microscope.start(sink);
    EXPECT_EQ(focus(10), TESMOR_SUCCESS);
}

} // namespace
} // namespace tesmor::microscope
