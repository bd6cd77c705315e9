#include "host/fusion_job.h"

#include "host/library_command.h"
#include "host/memory.h"
#include "terminal/interrupt.h"
#include "terminal/text.h"
#include "tesmor.h"

#include <atomic>

namespace tesmor::apps {

namespace {

constexpr std::uint64_t FUSION_BYTES_PER_PIXEL = 64;
constexpr std::uint64_t IMAGE_BYTES_PER_PIXEL = 3;

// What the library's worker tells, for the thread that waits.
struct FusionReports {
    CommandResult result;
    std::atomic<int> percent = 0;

    static void receive(const std::uint8_t* image, std::int32_t, std::int32_t, void* context, std::int32_t result)
    {
        auto& reports = *static_cast<FusionReports*>(context);
        if (image == nullptr)
            reports.percent = result;
        else
            reports.result.set(result);
    }
};

} // namespace

std::uint64_t fusionMemory(QSize size, std::size_t imageCount)
{
    const auto pixels = static_cast<std::uint64_t>(size.width()) * static_cast<std::uint64_t>(size.height());
    return pixels * (FUSION_BYTES_PER_PIXEL + IMAGE_BYTES_PER_PIXEL * (imageCount + 1));
}

void requireFusionMemory(std::uint64_t needed)
{
    const auto available = availableMemory();
    if (available && needed > *available)
        throw fusionMemoryError(needed);
}

UserError fusionMemoryError(std::uint64_t needed)
{
    return UserError(
        QString("not enough memory, about %1 are needed; close other programs, or merge fewer or smaller images")
            .arg(memoryText(needed)));
}

std::int32_t mergeImages(const std::vector<QImage>& images, QImage& output, ProgressBar& bar)
{
    std::vector<const std::uint8_t*> frames;
    for (const QImage& image : images)
        frames.push_back(image.constBits());

    const InterruptGuard guard;
    FusionReports reports;
    tesmor_fusion(frames.data(), frames.size(), static_cast<std::uint32_t>(output.width()),
                  static_cast<std::uint32_t>(output.height()), output.bits(), FusionReports::receive, &reports);
    return waitForResult(reports.result, [&] { bar.show(reports.percent); });
}

} // namespace tesmor::apps
