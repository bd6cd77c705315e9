// SPDX-License-Identifier: GPL-2.0-or-later
// Autofocus and stack capture on the virtual microscope, whose motor and camera take no time, against the same requests
// and frame waits with nothing around them. Frames are as small as they can be, so that making them hides little.
#include "bare_signal.h"
#include "loaded_library.h"
#include "microscope/virtual_microscope.h"
#include "placement.h"
#include "platform/drive_device.h"
#include "protocol/drive_request.h"
#include "ratio.h"
#include "tesmor.h"

#include <atomic>
#include <cmath>
#include <functional>
#include <stdexcept>
#include <thread>

namespace tesmor::bench {

namespace {

using microscope::Frame;
using microscope::VirtualMicroscope;

constexpr std::uint16_t MAGNIFICATION = 10;
constexpr std::int64_t OFFSET = -3000; // motor steps from the best focus

microscope::Settings instantMicroscope()
{
    microscope::Settings settings;
    settings.magnification = MAGNIFICATION;
    settings.width = 64;
    settings.height = 64;
    settings.noise = 0;
    settings.timeScale = 0;
    settings.motor.stepsPerSecond = 0;
    return settings;
}

// What a command asked of drive and camera.
struct Session {
    std::vector<std::vector<std::uint8_t>> requests;
    std::vector<std::size_t> requestsBeforeFrame; // for each frame that it waited for
};

class Bench {
public:
    Bench() : microscope_(instantMicroscope())
    {
        microscope_.start([this](const Frame& frame) { take(frame); });
        tesmor_init();
    }
    ~Bench()
    {
        tesmor_fini();
        microscope_.stop();
    }
    Bench(const Bench&) = delete;
    Bench& operator=(const Bench&) = delete;

    void setOutOfFocus()
    {
        microscope_.setPosition(std::llround(microscope_.bestFocus()) + OFFSET);
    }

    Session record(const std::function<void()>& command)
    {
        Session session;
        recorded_ = &session;
        recording_ = true;
        setOutOfFocus();
        const std::size_t before = microscope_.requestLog().size();
        command();
        recording_ = false;
        const auto log = microscope_.requestLog();
        for (std::size_t i = before; i < log.size(); ++i)
            session.requests.push_back(log[i].input);
        for (std::size_t& count : session.requestsBeforeFrame)
            count -= before;
        return session;
    }

    void replay(const Session& session)
    {
        bare_ = true;
        const auto device = platform::systemDriveUnits().open(microscope_.settings().unit);
        auto frame = session.requestsBeforeFrame.begin();
        for (std::size_t i = 0; i < session.requests.size(); ++i) {
            for (; frame != session.requestsBeforeFrame.end() && *frame == i; ++frame)
                waitForBareFrame();
            request(*device, session.requests[i]);
        }
        bare_ = false;
    }

private:
    // Camera thread.
    void take(const Frame& frame)
    {
        if (bare_) {
            if (bareRequest_.exchange(false))
                bareServed_.set();
            return;
        }
        if (recording_ && loadedSession().frameRequest != 0)
            recorded_->requestsBeforeFrame.push_back(microscope_.requestLog().size());
        tesmor_video(frame.pixels, frame.width, frame.height);
    }

    void waitForBareFrame()
    {
        bareRequest_ = true;
        bareServed_.wait();
    }

    void request(platform::DriveDevice& device, const std::vector<std::uint8_t>& input)
    {
        constexpr std::uint32_t limitMs = 1500;
        const bool moves = input[4] == DRIVE_REQ_MOVE;
        if (!device.control(IOCTL_DRIVE_REQUEST, input) || (moves && !device.readByte(&acknowledged_, limitMs)))
            throw std::runtime_error("the virtual microscope did not answer");
    }

    VirtualMicroscope microscope_;
    platform::Event acknowledged_{platform::Reset::manual, false};
    std::atomic<bool> recording_{false};
    Session* recorded_ = nullptr;
    std::atomic<bool> bare_{false};
    std::atomic<bool> bareRequest_{false};
    BareSignal bareServed_;
};

// The drive is closed only after the result was reported.
void waitUntilIdle()
{
    while (tesmor_doing() != 0)
        std::this_thread::yield();
}

void autofocus()
{
    struct End {
        BareSignal signal;
        std::int32_t result;
    } end;
    tesmor_start(
        MAGNIFICATION,
        [](void* context, std::int32_t result) {
            static_cast<End*>(context)->result = result;
            static_cast<End*>(context)->signal.set();
        },
        &end);
    end.signal.wait();
    waitUntilIdle();
    if (end.result != TESMOR_SUCCESS)
        throw std::runtime_error("the autofocus failed");
}

void captureStack()
{
    BareSignal end;
    const auto onFrame = [](const std::uint8_t* image, std::int32_t, std::int32_t, void* context, std::int32_t) {
        if (image == nullptr)
            static_cast<BareSignal*>(context)->set();
    };
    tesmor_startif(MAGNIFICATION, 30, 1, onFrame, &end, 0);
    end.wait();
    waitUntilIdle();
}

void compareSession(benchmark::State& state, const std::string& name, void (*command)())
{
    constexpr int rounds = 5;
    const OnProcessor allThreads(0); // then nothing but their work and the hand-overs is in the figure
    Bench bench;
    command(); // the first one is slower
    const Session session = bench.record(command);
    const Figure figure{name + " on the virtual microscope" + placementText(0),
                        std::to_string(session.requests.size()) + " requests, " +
                            std::to_string(session.requestsBeforeFrame.size()) + " bare frame waits",
                        1.2};
    const auto repeat = [&](auto action) {
        for (int i = 0; i < rounds; ++i) {
            bench.setOutOfFocus();
            action();
        }
    };
    compare<ElapsedTime>(
        state, figure, [] {}, [&] { repeat([&] { bench.replay(session); }); }, [&] { repeat(command); }, rounds);
}

void autofocusSession(benchmark::State& state)
{
    compareSession(state, "autofocus", autofocus);
}

void stackSession(benchmark::State& state)
{
    compareSession(state, "capture of 30 slices", captureStack);
}

} // namespace

BENCHMARK(autofocusSession)->Iterations(41)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(stackSession)->Iterations(41)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace tesmor::bench
