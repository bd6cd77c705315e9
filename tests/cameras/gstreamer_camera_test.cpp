// SPDX-License-Identifier: GPL-2.0-or-later
// GStreamer's test pictures, whose bytes are known.
#include "cameras/camera_list.h"
#include "cameras/watched_camera.h"

#include <atomic>
#include <thread>

namespace tesmor::test {
namespace {

using cameras::Camera;
using cameras::CameraError;
using cameras::CameraEvent;

std::string testPicture(const std::string& properties, int width, int height)
{
    return "videotestsrc is-live=true " + properties + " ! video/x-raw,framerate=100/1,width=" + std::to_string(width) +
           ",height=" + std::to_string(height);
}

TEST(GStreamerCamera, DeliversBlueGreenRedInPaddedRows)
{
    WatchedCamera watched(testPicture("pattern=solid-color foreground-color=0xff112233", 1001, 3));
    watched.start();
    const KeptFrame frame = watched.awaitFrames(1).front();
    ASSERT_EQ(frame.width, 1001);
    ASSERT_EQ(frame.height, 3);
    ASSERT_EQ(rowBytes(1001), 3004);
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t byte = 0; byte < 3 * 1001; ++byte)
            ASSERT_EQ(frame.bytes[row * 3004 + byte], 0x33 - 0x11 * (byte % 3)) << "row " << row << ", byte " << byte;
    }
}

TEST(GStreamerCamera, CountsTheFramesThatTheHostHadNoTimeFor)
{
    std::atomic<std::uint64_t> frames{0}, last{0};
    Camera camera(testPicture("", 64, 48));
    camera.start(
        [&](const cameras::Frame& frame) {
            while (cameras::Clock::now() - frame.time < std::chrono::milliseconds(50)) // five frames
                std::this_thread::yield();
            ++frames;
            last = frame.number;
        },
        {});
    while (last <= frames)
        std::this_thread::yield();
}

TEST(GStreamerCamera, TellsOfAnotherSizeBeforeItsFirstFrame)
{
    WatchedCamera watched(testPicture("num-buffers=3", 64, 48) + " ! both. " + testPicture("", 33, 16) +
                          " ! both. concat name=both");
    watched.start();
    const KeptEvent event = watched.awaitEvent(CameraEvent::RESIZED);
    EXPECT_NE(event.text.find("33 x 16"), std::string::npos) << event.text;
    const auto frames = watched.awaitFrames(1);
    ASSERT_GT(event.framesBefore, 0U);
    EXPECT_EQ(frames[event.framesBefore - 1].width, 64);
    EXPECT_EQ(frames[event.framesBefore].width, 33);
}

TEST(GStreamerCamera, IsLostWhenItsStreamEndsOrBreaks)
{
    for (const auto& [pipeline, text] :
         {std::pair("videotestsrc num-buffers=4", "the stream has ended"),
          std::pair("videotestsrc ! identity error-after=4", "Failed after iterations")}) {
        for (int round = 0; round < 2; ++round) { // it can be opened again
            WatchedCamera watched{std::string(pipeline)};
            watched.start();
            const KeptEvent event = watched.awaitEvent(CameraEvent::LOST);
            EXPECT_NE(event.text.find(text), std::string::npos) << event.text;
            EXPECT_GT(event.framesBefore, 0U);
        }
    }
}

TEST(GStreamerCamera, TellsWhatIsWrongWithAName)
{
    const std::pair<const char*, const char*> cases[] = {
        {"/dev/video99", "'/dev/video99'"},
        {"videotestsrc ! nosuchelement", "no element \"nosuchelement\""},
        {"videotestsrc !", "pipeline"},
        {"no such camera", "no such camera;"},
    };
    for (const auto& [name, text] : cases) {
        try {
            const Camera camera{std::string(name)};
            ADD_FAILURE() << name << " was opened";
        } catch (const CameraError& error) {
            EXPECT_NE(std::string(error.what()).find(text), std::string::npos) << error.what();
        }
    }
}

} // namespace
} // namespace tesmor::test
