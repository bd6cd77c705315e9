// SPDX-License-Identifier: GPL-2.0-or-later
#include "registration/shift_look.h"

#include "registration/opencv.h"

#include <algorithm>
#include <cmath>

namespace tesmor::apps {

namespace {

constexpr double MOST_PIXELS = 120'000;
constexpr double LEAST_PEAK = 0.25; // of a shift that is to be believed

} // namespace

double shiftBetweenFrames(const std::vector<QImage>& frames)
{
    return withoutOpenCvErrors([&] {
        double left = 0, right = 0, top = 0, bottom = 0;
        cv::Point2d place(0, 0);
        cv::Mat last;
        for (const QImage& frame : frames) {
            const cv::Mat grey = withoutShading(greyOf(frame, MOST_PIXELS));
            if (!last.empty()) {
                const Shift shift = shiftBetween(last, grey);
                if (shift.peak >= LEAST_PEAK)
                    place += shift.pixels;
            }
            last = grey;
            left = std::min(left, place.x), right = std::max(right, place.x);
            top = std::min(top, place.y), bottom = std::max(bottom, place.y);
        }
        return last.empty() ? 0 : std::hypot(right - left, bottom - top) * frames.front().width() / last.cols;
    });
}

} // namespace tesmor::apps
