// SPDX-License-Identifier: GPL-2.0-or-later
// A camera whose device does as the test says: nobody waits for it, and after a stop there is silence.
#include "cameras/stream_watch.h"
#include "cameras/watched_camera.h"

#include <atomic>
#include <future>
#include <thread>

namespace tesmor::test {
namespace {

using namespace std::chrono_literals;
using namespace cameras;

struct Script {
    std::atomic<bool> lost{false};
    std::atomic<double> exposure{0.01};
    std::promise<void> mayStop; // stop() blocks until then
    std::shared_future<void> stopAllowed{mayStop.get_future()};
    std::atomic<bool> closed{false};
};

class ScriptedDevice : public Device {
public:
    explicit ScriptedDevice(Script& script) : script_(script) {}
    ~ScriptedDevice() override
    {
        script_.closed = true;
    }
    void start() override {}
    bool next(std::chrono::milliseconds, const FrameSink& sink) override
    {
        if (script_.lost)
            throw CameraError("unplugged");
        std::this_thread::sleep_for(1ms); // its frame time
        const std::uint8_t pixel[4]{};
        sink({pixel, 1, 1, number_++, Clock::now()});
        return true;
    }
    void stop() noexcept override
    {
        script_.stopAllowed.wait();
    }
    std::optional<ControlState> control(Control control) const override
    {
        return control == Control::EXPOSURE ? std::optional(ControlState{script_.exposure, 0.001, 1}) : std::nullopt;
    }
    void setControl(Control, double value) override
    {
        script_.exposure = std::min(value, 1.0);
    }

private:
    Script& script_;
    std::uint64_t number_ = 0;
};

// Each returns although the device is stuck: were it waited for, the test would hang.
TEST(Camera, IsNotWaitedForWhenItsDeviceIsStuck)
{
    Script script;
    {
        WatchedCamera watched(DeviceMaker([&] { return std::make_unique<ScriptedDevice>(script); }));
        watched.start();
        watched.awaitFrames(2);
        script.lost = true;
        EXPECT_EQ(watched.awaitEvent(CameraEvent::LOST).text, "unplugged");
        watched.camera.stop();
        EXPECT_THROW(watched.start(), CameraError);
    }
    EXPECT_FALSE(script.closed);
    script.mayStop.set_value();
    while (!script.closed)
        std::this_thread::yield();
}

TEST(Camera, IsSilentAfterAStopAndStartsAgain)
{
    Script script;
    script.mayStop.set_value();
    WatchedCamera watched(DeviceMaker([&] { return std::make_unique<ScriptedDevice>(script); }));
    for (int round = 0; round < 50; ++round) {
        watched.start();
        watched.awaitFrames(1);
        watched.camera.stop();
        const std::size_t count = watched.frames().size();
        std::this_thread::yield();
        EXPECT_EQ(watched.frames().size(), count);
    }
}

TEST(Camera, TakesAnExposureAndTellsWhatCameOfIt)
{
    Script script;
    script.mayStop.set_value();
    WatchedCamera watched(DeviceMaker([&] { return std::make_unique<ScriptedDevice>(script); }));
    for (const double wish : {0.5, 7.0}) { // at rest, then in the stream
        watched.camera.setControl(Control::EXPOSURE, wish);
        while (watched.camera.control(Control::EXPOSURE)->value != std::min(wish, 1.0))
            std::this_thread::yield();
        watched.start();
    }
    EXPECT_FALSE(watched.camera.control(Control::GAIN));
}

TEST(Camera, TellsWhyItCannotBeOpened)
{
    try {
        const Camera camera(DeviceMaker([]() -> std::unique_ptr<Device> { throw CameraError("in use"); }));
        FAIL();
    } catch (const CameraError& error) {
        EXPECT_STREQ(error.what(), "in use");
    }
}

TEST(StreamWatch, TellsAStallOnceAndItsEnd)
{
    const Clock::time_point start;
    StreamWatch watch(start);
    EXPECT_FALSE(watch.noFrame(0, start + 2900ms));
    EXPECT_FALSE(watch.frameComes(64, 48, start + 2900ms));
    EXPECT_FALSE(watch.noFrame(2, start + 7800ms)); // an exposure of 2 seconds
    EXPECT_EQ(watch.noFrame(2, start + 8000ms)->event, CameraEvent::STALLED);
    EXPECT_FALSE(watch.noFrame(0, start + 20s));
    EXPECT_EQ(watch.frameComes(64, 48, start + 21s)->event, CameraEvent::RESUMED);
    EXPECT_FALSE(watch.frameComes(64, 48, start + 22s));
}

} // namespace
} // namespace tesmor::test
