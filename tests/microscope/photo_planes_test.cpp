#include "microscope/virtual_microscope.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace tesmor::microscope {
namespace {

// Three planes of even brightness; the middle one has a chequered middle.
PhotoPlanes grey(bool blend)
{
    PhotoPlanes planes{{}, 100, blend};
    for (const std::uint8_t brightness : {10, 50, 250}) {
        Image image(65, 64);
        std::ranges::fill(image.pixels, brightness);
        planes.images.push_back(image);
    }
    for (std::size_t i = 0; i < planes.images[1].pixels.size(); i += 2)
        planes.images[1].pixels[i] = 52;
    return planes;
}

TEST(PhotoPlanes, ShowTheNearestPlaneOrABlendOfTwo)
{
    struct Case {
        std::int64_t position;
        int nearest;
        int blend;
    };
    const Case cases[] = {{-900, 10, 10}, {0, 10, 10}, {25, 10, 20}, {75, 51, 41}, {125, 51, 101}, {900, 250, 250}};
    Settings settings;
    settings.magnification = 40;
    for (const bool blend : {false, true}) {
        settings.photos = grey(blend);
        const VirtualMicroscope microscope(settings);
        EXPECT_EQ(microscope.bestFocus(), 100);
        EXPECT_EQ(microscope.position(), 100);
        EXPECT_FALSE(microscope.hasTruth());
        for (const Case& each : cases) {
            const Image view = microscope.view(each.position);
            ASSERT_EQ(view.width, 65);
            EXPECT_NEAR(view.pixels[1000], blend ? each.blend : each.nearest, 1) << each.position << blend;
        }
    }
}

TEST(PhotoPlanes, AreRefusedWhenTheyDoNotFitTogether)
{
    Settings settings;
    settings.photos = PhotoPlanes{};
    EXPECT_THROW(VirtualMicroscope{settings}, std::invalid_argument);
    settings.photos = grey(true);
    settings.photos->images[2] = Image(65, 65);
    EXPECT_THROW(VirtualMicroscope{settings}, std::invalid_argument);
    settings.photos = grey(true);
    settings.photos->stepsPerPlane = 0;
    EXPECT_THROW(VirtualMicroscope{settings}, std::invalid_argument);
}

} // namespace
} // namespace tesmor::microscope
