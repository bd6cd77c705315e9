// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/camera/stack_capture.h"

#include "images/frame_image.h"
#include "terminal/interrupt.h"
#include "terminal/live_line.h"
#include "terminal/text.h"
#include "tesmor.h"

#include <chrono>
#include <utility>

namespace tesmor::apps {

namespace {

constexpr std::chrono::seconds TIME_BETWEEN_LINES(1);
constexpr int BAR_LENGTH = 30; // characters

} // namespace

std::int32_t StackCapture::run(std::uint16_t magnification, std::uint16_t slices, std::int32_t spacing, bool quiet)
{
    const InterruptGuard guard;
    LiveLine line(LiveLine::styleOfOutput(quiet), TIME_BETWEEN_LINES);
    images_.reserve(slices);
    tesmor_startif(magnification, slices, spacing, receive, this, 0);
    return result_.wait([&] {
        const std::size_t done = count();
        const QString what = done < slices ? QString("slice %1 of %2").arg(done + 1).arg(slices) : "moving back";
        line.show(QString("Capturing %1 %2").arg(barText(static_cast<double>(done) / slices, BAR_LENGTH), what));
    });
}

std::vector<QImage> StackCapture::takeImages()
{
    const std::lock_guard lock(mutex_);
    return std::move(images_);
}

void StackCapture::receive(const std::uint8_t* image, std::int32_t width, std::int32_t height, void* context,
                           std::int32_t result)
{
    auto& capture = *static_cast<StackCapture*>(context);
    if (image == nullptr)
        return capture.result_.set(result);
    QImage slice = copyOfFrame(image, width, height); // null without memory: nothing may be thrown here
    const std::lock_guard lock(capture.mutex_);
    capture.images_.push_back(std::move(slice));
}

std::size_t StackCapture::count()
{
    const std::lock_guard lock(mutex_);
    return images_.size();
}

} // namespace tesmor::apps
