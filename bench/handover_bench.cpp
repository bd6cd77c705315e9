// SPDX-License-Identifier: GPL-2.0-or-later
// The idle frame hook, and what passes between the host's threads and the worker, against bare loads and wake-ups.
#include "bare_signal.h"
#include "frames/frame_wait.h"
#include "loaded_library.h"
#include "placement.h"
#include "ratio.h"
#include "tesmor.h"

#include <atomic>
#include <optional>
#include <thread>

namespace tesmor::bench {

namespace {

std::atomic<std::int32_t> bareRequest{0};

[[gnu::noinline]] void bareHook(const std::uint8_t* image, std::int32_t, std::int32_t)
{
    if (bareRequest.load(std::memory_order_relaxed) != 0)
        benchmark::DoNotOptimize(image);
}

void idleHook(benchmark::State& state)
{
    constexpr int calls = 1'000'000;
    const std::uint8_t pixel[4]{};
    loadedSession().frameRequest = 0;
    const auto callOften = [&](auto hook) {
        for (int i = 0; i < calls; ++i)
            hook(pixel, 1, 1);
    };
    const Figure figure{"idle frame hook", "one relaxed load and a call", 2.0};
    compare<ProcessorTime>(
        state, figure, [] {}, [&] { callOften(bareHook); }, [&] { callOften(tesmor_video); }, calls);
}

constexpr int ROUNDS = 500;

void postToIdle(benchmark::State& state)
{
    const auto processor = static_cast<int>(state.range(0));
    const OnProcessor host(0);
    BareSignal command, idle;
    std::thread bareWorker;
    {
        const OnProcessor worker(processor);
        bareWorker = std::thread([&] {
            for (std::int64_t i = 0; i < state.max_iterations * ROUNDS; ++i) {
                command.wait();
                idle.set();
            }
        });
        tesmor_init();
    }
    const Figure figure{"post to idle again (tesmor_reset)" + placementText(processor),
                        "two wake-ups of bare condition variables", 1.3};
    compare<ElapsedTime>(
        state, figure, [] {},
        [&] {
            for (int i = 0; i < ROUNDS; ++i) {
                command.set();
                idle.wait();
            }
        },
        [] {
            for (int i = 0; i < ROUNDS; ++i)
                tesmor_reset();
        },
        ROUNDS);
    tesmor_fini();
    bareWorker.join();
}

// A thread that offers frames without pause, as the fastest camera would, and sleeps while it is not to.
template <class Offer>
class Camera {
public:
    explicit Camera(Offer offer)
        : thread_([this, offer] {
              while (state_ != STOPPED) {
                  state_.wait(RESTING);
                  offer();
                  std::this_thread::yield(); // else, on one processor, the host would wait for the end of a time slice
              }
          })
    {
    }
    ~Camera()
    {
        set(STOPPED);
        thread_.join();
    }

    void run(bool running)
    {
        set(running ? RUNNING : RESTING);
    }

private:
    enum State { RESTING, RUNNING, STOPPED };

    void set(State state)
    {
        state_ = state;
        state_.notify_one();
    }

    std::atomic<State> state_{RESTING};
    std::thread thread_; // on the processor of its maker
};

void requestToServed(benchmark::State& state)
{
    const auto ignoreFrame = [](const std::uint8_t*, std::int32_t, std::int32_t, void*, std::int32_t) {};
    Session& session = loadedSession();
    FrameWait frames(session, platform::systemClock());
    session.commandBlock.command = CMD_CAPTURE;
    session.commandBlock.frameCallback = ignoreFrame;
    session.runFlag = 1;
    BareSignal served;
    std::atomic<std::int32_t> request{0};
    const std::uint8_t pixel[4]{};
    const auto processor = static_cast<int>(state.range(0));
    std::optional<OnProcessor> placed(std::in_place, processor);
    Camera bareCamera([&] {
        if (request.load(std::memory_order_relaxed) != 0) {
            request = 0;
            served.set();
        }
    });
    Camera camera([&] { tesmor_video(pixel, 1, 1); });
    placed.emplace(0);

    const Figure figure{"frame request to served frame" + placementText(processor),
                        "one wake-up of a bare condition variable", 1.3};
    compare<ElapsedTime>(
        state, figure, [] {},
        [&] {
            bareCamera.run(true);
            for (int i = 0; i < ROUNDS; ++i) {
                request = 1;
                served.wait();
            }
            bareCamera.run(false);
        },
        [&] {
            camera.run(true);
            for (int i = 0; i < ROUNDS; ++i)
                frames.next();
            camera.run(false);
        },
        ROUNDS);
    session.commandBlock.command = CMD_IDLE;
}

} // namespace

BENCHMARK(idleHook)->Iterations(101)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(postToIdle)->Arg(0)->Arg(1)->Iterations(101)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(requestToServed)->Arg(0)->Arg(1)->Iterations(101)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace tesmor::bench
