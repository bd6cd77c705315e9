// SPDX-License-Identifier: GPL-2.0-or-later
// Aravis' fake camera shows a diagonal ramp that moves by one from frame to frame.
#include "cameras/camera_list.h"
#include "cameras/fake_gige_camera.h"
#include "cameras/watched_camera.h"

#include <cstdlib>

namespace tesmor::test {
namespace {

using cameras::CameraError;
using cameras::CameraEvent;
using cameras::Control;

constexpr int WIDTH = 9; // rows of 27 bytes, padded to 28
constexpr int HEIGHT = 6;

int byteAt(const KeptFrame& frame, int x, int y, int colour)
{
    return frame.bytes[static_cast<std::size_t>(28 * y + 3 * x + colour)];
}

TEST(GenicamCamera, DeliversGreyToTheByte)
{
    const FakeGigeCamera fake("127.0.0.1", "GREY");
    fake.set(ARV_PIXEL_FORMAT_MONO_8, WIDTH, HEIGHT);
    WatchedCamera watched(std::string("GREY"));
    watched.start();
    const KeptFrame frame = watched.awaitFrames(3).back();
    ASSERT_EQ(std::pair(frame.width, frame.height), std::pair(WIDTH, HEIGHT));
    for (int i = 0; i < 3 * WIDTH * HEIGHT; ++i) {
        const int x = i / 3 % WIDTH, y = i / 3 / WIDTH;
        ASSERT_EQ(byteAt(frame, x, y, i % 3), (byteAt(frame, 0, 0, 0) + x + y) % 255) << x << ", " << y;
    }
}

// In colour the ramp is a rainbow. Where green is full, red rises by 4 from a pixel to the next and blue falls by as
// much, so that whatever a mosaic leaves out lies exactly between its neighbours; but for the border.
bool isRainbow(const KeptFrame& frame, int border, int red)
{
    const int first = byteAt(frame, border, border, red);
    for (int y = border; y < HEIGHT - border; ++y) {
        for (int x = border; x < WIDTH - border; ++x) {
            const int expected = first + 4 * (x + y - 2 * border);
            if (byteAt(frame, x, y, red) != expected || byteAt(frame, x, y, 1) != 255 ||
                byteAt(frame, x, y, 2 - red) != 256 - expected)
                return false;
        }
    }
    return true;
}

TEST(GenicamCamera, DeliversColoursOfEveryMosaicToTheByte)
{
    const FakeGigeCamera fake("127.0.0.1", "COLOUR");
    const struct {
        ArvPixelFormat format;
        int border;
        int red; // the fake camera of Aravis 0.8.26 sends the mosaics RG and BG with red and blue swapped
    } cases[] = {{ARV_PIXEL_FORMAT_RGB_8_PACKED, 0, 2},
                 {ARV_PIXEL_FORMAT_BAYER_RG_8, 1, 0},
                 {ARV_PIXEL_FORMAT_BAYER_GR_8, 1, 2},
                 {ARV_PIXEL_FORMAT_BAYER_GB_8, 1, 2},
                 {ARV_PIXEL_FORMAT_BAYER_BG_8, 1, 0}};
    for (const auto& [format, border, red] : cases) {
        fake.set(format, WIDTH, HEIGHT);
        WatchedCamera watched(std::string("127.0.0.1"));
        watched.start();
        bool found = false;
        for (int i = 0; i < 20 && !found; ++i) { // a round of the ramp takes 255 frames
            const auto frames = watched.awaitFrames(50);
            found = std::ranges::any_of(frames, [&](const KeptFrame& frame) { return isRainbow(frame, border, red); });
        }
        EXPECT_TRUE(found) << "format " << std::hex << format;
    }
}

TEST(GenicamCamera, IsLostWhenTheCameraDiesAndCanBeOpenedAgain)
{
    FakeGigeCamera first("127.0.0.1", "MORTAL");
    WatchedCamera watched(std::string("MORTAL"));
    watched.start();
    watched.awaitFrames(3);
    first.end();
    const KeptEvent event = watched.awaitEvent(CameraEvent::LOST);
    EXPECT_NE(event.text.find("does not respond any more"), std::string::npos) << event.text;

    const FakeGigeCamera second("127.0.0.1", "MORTAL");
    WatchedCamera again(std::string("MORTAL"));
    again.start();
    again.awaitFrames(3);
}

TEST(GenicamCamera, RunsBesideAnother)
{
    if (std::system("ip address show lo | grep -q 127.0.0.2/8 || ip address add 127.0.0.2/8 dev lo") != 0)
        GTEST_SKIP() << "the second camera's address cannot be added to the interface lo; ./test can";
    const FakeGigeCamera left("127.0.0.1", "LEFT"), right("127.0.0.2", "RIGHT");
    left.set(ARV_PIXEL_FORMAT_MONO_8, 64, 48);
    right.set(ARV_PIXEL_FORMAT_MONO_8, 32, 16);
    std::vector<std::string> names;
    for (const auto& info : cameras::listCameras())
        names.push_back(info.name);
    EXPECT_EQ(std::ranges::count(names, "Aravis-Fake-LEFT"), 1);
    EXPECT_EQ(std::ranges::count(names, "Aravis-Fake-RIGHT"), 1);

    WatchedCamera atLeft(std::string("Aravis-Fake-LEFT")), atRight(std::string("Aravis-Fake-RIGHT"));
    atLeft.start();
    atRight.start();
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(atLeft.awaitFrames(1).back().width, 64);
        EXPECT_EQ(atRight.awaitFrames(1).back().width, 32);
    }
    EXPECT_THROW(WatchedCamera(std::string("LEFT")), CameraError); // somebody has it
}

TEST(GenicamCamera, TakesAnExposure)
{
    const FakeGigeCamera fake("127.0.0.1", "SLOW");
    cameras::Camera camera(std::string("SLOW"));
    const auto before = camera.control(Control::EXPOSURE);
    ASSERT_TRUE(before);
    camera.setControl(Control::EXPOSURE, 0.02);
    while (camera.control(Control::EXPOSURE)->value == before->value)
        std::this_thread::yield();
    EXPECT_DOUBLE_EQ(camera.control(Control::EXPOSURE)->value, 0.02);
    EXPECT_LT(camera.control(Control::EXPOSURE)->least, 0.02);
}

} // namespace
} // namespace tesmor::test
