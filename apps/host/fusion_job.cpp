// SPDX-License-Identifier: GPL-2.0-or-later
#include "host/fusion_job.h"

#include "host/pending_result.h"
#include "host/planning_cache.h"
#include "terminal/interrupt.h"
#include "tesmor.h"

#include <atomic>

namespace tesmor::apps {

namespace {

// From the library's worker to the waiting thread.
struct FusionReports {
    PendingResult result;
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

std::int32_t mergeImages(const std::vector<QImage>& images, QImage& output, const std::function<void(int)>& progress)
{
    std::vector<const std::uint8_t*> frames;
    for (const QImage& image : images)
        frames.push_back(image.constBits());

    const InterruptGuard guard;
    loadPlanning();
    FusionReports reports;
    tesmor_fusion(frames.data(), frames.size(), static_cast<std::uint32_t>(output.width()),
                  static_cast<std::uint32_t>(output.height()), output.bits(), FusionReports::receive, &reports);
    const std::int32_t result = reports.result.wait([&] { progress(reports.percent); });
    savePlanning();
    return result;
}

} // namespace tesmor::apps
