#include "fusion_job.h"

#include "interrupt.h"
#include "subcommand.h"
#include "tesmor.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

namespace tesmor::apps {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto TICK = 50ms; // between two looks at the interruption
constexpr auto PATIENCE = 500ms;
constexpr std::uint64_t FUSION_BYTES_PER_PIXEL = 64;
constexpr std::uint64_t IMAGE_BYTES_PER_PIXEL = 3;

// What the library's worker tells, for the thread that waits.
class FusionReports {
public:
    static void receive(const std::uint8_t* image, std::int32_t, std::int32_t, void* context, std::int32_t result)
    {
        auto& reports = *static_cast<FusionReports*>(context);
        const std::lock_guard lock(reports.mutex_);
        if (image == nullptr)
            reports.percent_ = result;
        else
            reports.result_ = result;
        reports.changed_.notify_one();
    }

    // The fusion's result; none when a tick went by without it.
    std::optional<std::int32_t> waitForResult()
    {
        std::unique_lock lock(mutex_);
        changed_.wait_for(lock, TICK, [this] { return result_.has_value(); });
        return result_;
    }

    int percent() const
    {
        const std::lock_guard lock(mutex_);
        return percent_;
    }

private:
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::optional<std::int32_t> result_;
    int percent_ = 0;
};

// Aborts the command in hand from a thread of its own, since tesmor_cancelif waits until the worker has ended it.
class Cancellation {
public:
    ~Cancellation()
    {
        if (thread_.joinable())
            thread_.join();
    }

    void startOrGiveUp()
    {
        if (!thread_.joinable()) {
            giveUpTime_ = Clock::now() + PATIENCE;
            thread_ = std::thread(tesmor_cancelif);
        } else if (Clock::now() > giveUpTime_) {
            leaveInterrupted();
        }
    }

private:
    std::thread thread_;
    Clock::time_point giveUpTime_;
};

} // namespace

std::uint64_t fusionMemory(QSize size, std::size_t imageCount)
{
    const auto pixels = static_cast<std::uint64_t>(size.width()) * static_cast<std::uint64_t>(size.height());
    return pixels * (FUSION_BYTES_PER_PIXEL + IMAGE_BYTES_PER_PIXEL * (imageCount + 1));
}

std::int32_t mergeImages(const std::vector<QImage>& images, QImage& output, ProgressBar& bar)
{
    std::vector<const std::uint8_t*> frames;
    for (const QImage& image : images)
        frames.push_back(image.constBits());

    InterruptGuard guard;
    FusionReports reports;
    Cancellation cancellation;
    tesmor_fusion(frames.data(), frames.size(), static_cast<std::uint32_t>(output.width()),
                  static_cast<std::uint32_t>(output.height()), output.bits(), FusionReports::receive, &reports);
    while (true) {
        if (const auto result = reports.waitForResult())
            return interrupted() ? TESMOR_ABORTED : *result;
        bar.show(reports.percent());
        if (interrupted())
            cancellation.startOrGiveUp();
    }
}

} // namespace tesmor::apps
