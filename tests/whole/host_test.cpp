// SPDX-License-Identifier: GPL-2.0-or-later
// The shared library as a viewer uses it, on the virtual microscope: focus, capture a stack, fuse it.
#include "microscope/virtual_microscope.h"
#include "tesmor.h"

#include <future>
#include <gtest/gtest.h>

namespace tesmor::microscope {
namespace {

struct Host {
    std::vector<Image> slices;
    std::promise<std::int32_t> ended;

    static void onDone(void* context, std::int32_t result)
    {
        static_cast<Host*>(context)->ended.set_value(result);
    }

    static void onFrame(const std::uint8_t* image, std::int32_t width, std::int32_t height, void* context,
                        std::int32_t result)
    {
        Host& host = *static_cast<Host*>(context);
        if (!image) {
            onDone(context, result);
            return;
        }
        Image slice(width, height);
        std::copy_n(image, slice.pixels.size(), slice.pixels.begin());
        host.slices.push_back(std::move(slice));
    }

    static void onFused(const std::uint8_t* image, std::int32_t, std::int32_t, void* context, std::int32_t result)
    {
        if (image)
            onDone(context, result);
    }
};

double meanDifference(const Image& a, const Image& b)
{
    double sum = 0;
    for (std::size_t i = 0; i < a.pixels.size(); ++i)
        sum += std::abs(a.pixels[i] - b.pixels[i]);
    return sum / static_cast<double>(a.pixels.size());
}

TEST(Host, FocusesCapturesAndFuses)
{
    Settings settings;
    settings.width = 320;
    settings.height = 240;
    settings.timeScale = 0;
    VirtualMicroscope microscope(settings);
    microscope.setPosition(static_cast<std::int64_t>(microscope.bestFocus()) + 2500);
    microscope.start([](const Frame& frame) { tesmor_video(frame.pixels, frame.width, frame.height); });
    ASSERT_EQ(tesmor_init(), 1);

    Host focusing;
    tesmor_start(10, Host::onDone, &focusing);
    EXPECT_EQ(focusing.ended.get_future().get(), TESMOR_SUCCESS);
    EXPECT_NEAR(static_cast<double>(microscope.position()), microscope.bestFocus(), microscope.depthOfField());

    constexpr std::uint16_t sliceCount = 7;
    constexpr std::int64_t start = -6000; // below the lowest thing in the field
    microscope.setPosition(start);
    Host capturing;
    tesmor_startif(10, sliceCount, 30, Host::onFrame, &capturing, 0); // 3600 steps from slice to slice
    EXPECT_EQ(capturing.ended.get_future().get(), TESMOR_STACK_DONE);
    ASSERT_EQ(capturing.slices.size(), sliceCount);
    EXPECT_EQ(microscope.position(), start);

    std::vector<const std::uint8_t*> images;
    for (const Image& slice : capturing.slices)
        images.push_back(slice.pixels.data());
    Image fused(settings.width, settings.height);
    Host fusing;
    tesmor_fusion(images.data(), images.size(), 320, 240, fused.pixels.data(), Host::onFused, &fusing);
    EXPECT_EQ(fusing.ended.get_future().get(), TESMOR_SUCCESS);
    EXPECT_NE(tesmor_fini(), 0);

    double slicesError = 0;
    for (const Image& slice : capturing.slices)
        slicesError += meanDifference(slice, microscope.truth()) / sliceCount;

    EXPECT_LT(meanDifference(fused, microscope.truth()), slicesError);
}

} // namespace
} // namespace tesmor::microscope
