// SPDX-License-Identifier: GPL-2.0-or-later
#include "registration/shift_look.h"

#include "registration/opencv.h"

#include <algorithm>
#include <cmath>

namespace tesmor::apps {

namespace {

constexpr double MOST_PIXELS = 150'000;
constexpr double LEAST_PEAK = 0.7; // of a shift that is to be believed: of all detail, not of dust or reflections

// Pixels of the frame to a pixel of the look; whole, since that is averaged fastest.
int shrinkingOf(const QImage& frame)
{
    return std::max(1, static_cast<int>(std::ceil(std::sqrt(1.0 * frame.width() * frame.height() / MOST_PIXELS))));
}

cv::Mat lookOf(const QImage& frame, int shrinking)
{
    const cv::Size size(std::max(1, frame.width() / shrinking), std::max(1, frame.height() / shrinking));
    const cv::Rect whole(0, 0, std::min(frame.width(), size.width * shrinking),
                         std::min(frame.height(), size.height * shrinking));
    cv::Mat small, grey;
    cv::resize(matOf(frame)(whole), small, size, 0, 0, cv::INTER_AREA);
    cv::cvtColor(small, grey, cv::COLOR_BGR2GRAY);
    grey.convertTo(grey, CV_32F);
    return withoutShading(grey);
}

} // namespace

double shiftBetweenFrames(const std::vector<QImage>& frames)
{
    return withoutOpenCvErrors([&] {
        double left = 0, right = 0, top = 0, bottom = 0;
        cv::Point2d place(0, 0);
        cv::Mat last;
        const int shrinking = shrinkingOf(frames.front());
        for (const QImage& frame : frames) {
            const cv::Mat grey = lookOf(frame, shrinking);
            if (!last.empty()) {
                const Shift shift = shiftBetween(last, grey);
                if (shift.peak >= LEAST_PEAK)
                    place += shift.pixels;
            }
            last = grey;
            left = std::min(left, place.x), right = std::max(right, place.x);
            top = std::min(top, place.y), bottom = std::max(bottom, place.y);
        }
        return shrinking * std::hypot(right - left, bottom - top);
    });
}

} // namespace tesmor::apps
