#include "host/frame_watch.h"

#include "tesmor.h"

#include <algorithm>
#include <cmath>

namespace tesmor::apps {

namespace {

double middleContrast(const microscope::Frame& frame, std::uint16_t magnification)
{
    const int divisor = magnification >= 40 ? 2 : 4;
    const int width = frame.width / divisor;
    const int height = frame.height / divisor;
    const int left = (frame.width - width) / 2;
    const int top = (frame.height - height) / 2;
    double sum = 0;
    double squares = 0;
    for (int y = top; y < top + height; ++y) {
        const std::uint8_t* pixel = frame.pixels + microscope::rowBytes(frame.width) * static_cast<std::size_t>(y) +
                                    3 * static_cast<std::size_t>(left);
        for (int x = 0; x < width; ++x, pixel += 3) {
            const double brightness = 0.114 * pixel[0] + 0.587 * pixel[1] + 0.299 * pixel[2];
            sum += brightness;
            squares += brightness * brightness;
        }
    }
    const double count = static_cast<double>(width) * height;
    return std::sqrt(std::max(0.0, squares / count - sum / count * (sum / count)));
}

} // namespace

void FrameWatch::receive(const microscope::Frame& frame)
{
    const double sharpness = middleContrast(frame, magnification_);
    {
        const std::lock_guard lock(mutex_);
        frames_.push_back({Clock::now(), frame.position, sharpness});
        if (firstImage_.isNull())
            firstImage_ = copyOfFrame(frame.pixels, frame.width, frame.height);
    }
    tesmor_video(frame.pixels, frame.width, frame.height);
}

std::vector<SeenFrame> FrameWatch::frames() const
{
    const std::lock_guard lock(mutex_);
    return frames_;
}

std::size_t FrameWatch::count() const
{
    const std::lock_guard lock(mutex_);
    return frames_.size();
}

std::optional<SeenFrame> FrameWatch::last() const
{
    const std::lock_guard lock(mutex_);
    return frames_.empty() ? std::nullopt : std::optional(frames_.back());
}

QImage FrameWatch::firstImage() const
{
    const std::lock_guard lock(mutex_);
    return firstImage_;
}

QImage copyOfFrame(const std::uint8_t* pixels, int width, int height)
{
    const auto rowBytes = static_cast<qsizetype>(microscope::rowBytes(width));
    return QImage(pixels, width, height, rowBytes, QImage::Format_BGR888).copy();
}

} // namespace tesmor::apps
