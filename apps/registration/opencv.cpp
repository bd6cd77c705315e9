// SPDX-License-Identifier: GPL-2.0-or-later
#include "registration/opencv.h"

#include "registration/stack_placement.h"

#include <algorithm>
#include <cmath>

namespace tesmor::apps {

std::string registrationVersion()
{
    return "OpenCV " + cv::getVersionString();
}

cv::Mat matOf(QImage& image)
{
    return {image.height(), image.width(), CV_8UC3, image.bits(), static_cast<std::size_t>(image.bytesPerLine())};
}

cv::Mat matOf(const QImage& image)
{
    return {image.height(), image.width(), CV_8UC3, const_cast<uchar*>(image.constBits()),
            static_cast<std::size_t>(image.bytesPerLine())};
}

cv::Mat greyOf(const QImage& image, double mostPixels)
{
    cv::Mat grey;
    cv::cvtColor(matOf(image), grey, cv::COLOR_BGR2GRAY);
    grey.convertTo(grey, CV_32F);
    const double shrinking = std::sqrt(mostPixels / grey.cols / grey.rows);
    if (shrinking < 1) {
        const auto shrunk = [&](int side) { return std::max(1, static_cast<int>(std::lround(side * shrinking))); };
        cv::Mat small;
        cv::resize(grey, small, {shrunk(grey.cols), shrunk(grey.rows)}, 0, 0, cv::INTER_AREA);
        return small;
    }
    return grey;
}

cv::Mat withoutShading(const cv::Mat& grey)
{
    // A box is as good as anything for what is that coarse, and takes the same time at any size.
    const int box = std::max(grey.cols, grey.rows) / 4;
    cv::Mat coarse;
    cv::blur(grey, coarse, {box, box}, {-1, -1}, cv::BORDER_REFLECT_101);
    return grey - coarse;
}

cv::Matx23d matrixOf(const Placement& placement, cv::Size size)
{
    const QPointF middle((size.width - 1) / 2.0, (size.height - 1) / 2.0);
    const double cosine = placement.scale * std::cos(placement.angle);
    const double sine = placement.scale * std::sin(placement.angle);
    const QPointF corner = placement.shownAt(-middle) + middle;
    return {cosine, -sine, corner.x(), sine, cosine, corner.y()};
}

Shift shiftBetween(const cv::Mat& reference, const cv::Mat& shown)
{
    // OpenCV pads other sizes, and is half a pixel off where the padded size is odd.
    const auto transformed = [](int side) {
        while (side > 2 && (side % 2 != 0 || cv::getOptimalDFTSize(side) != side))
            --side;
        return side;
    };
    const cv::Rect part(0, 0, transformed(reference.cols), transformed(reference.rows));
    cv::Mat window;
    cv::createHanningWindow(window, part.size(), CV_32F);
    Shift shift{};
    shift.pixels = cv::phaseCorrelate(reference(part), shown(part), window, &shift.peak);
    return shift;
}

} // namespace tesmor::apps
