// SPDX-License-Identifier: GPL-2.0-or-later
#include "registration/opencv.h"

#include "registration/stack_placement.h"

#include <algorithm>
#include <cmath>

namespace tesmor::apps {

namespace {

constexpr int SHADING_PART = 16; // what is coarser than the frame's sides by that is shading

} // namespace

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

cv::Size sizeWithin(cv::Size size, double mostPixels)
{
    const double shrinking = std::sqrt(mostPixels / size.width / size.height);
    if (shrinking >= 1)
        return size;
    const auto shrunk = [&](int side) { return std::max(1, static_cast<int>(std::lround(side * shrinking))); };
    return {shrunk(size.width), shrunk(size.height)};
}

cv::Mat greyOf(const QImage& image, double mostPixels)
{
    cv::Mat grey;
    cv::cvtColor(matOf(image), grey, cv::COLOR_BGR2GRAY);
    grey.convertTo(grey, CV_32F);
    const cv::Size size = sizeWithin(grey.size(), mostPixels);
    if (size == grey.size())
        return grey;
    cv::Mat small;
    cv::resize(grey, small, size, 0, 0, cv::INTER_AREA);
    return small;
}

cv::Mat withoutShading(const cv::Mat& grey)
{
    // A box is as good as anything for what is that coarse, and takes the same time at any size. Near the border it
    // would average what does not move with the specimen.
    const cv::Size reach(grey.cols / (2 * SHADING_PART), grey.rows / (2 * SHADING_PART));
    cv::Mat coarse;
    cv::blur(grey, coarse, {2 * reach.width + 1, 2 * reach.height + 1}, {-1, -1}, cv::BORDER_REFLECT_101);
    const cv::Rect inner(reach.width, reach.height, grey.cols - 2 * reach.width, grey.rows - 2 * reach.height);
    return grey(inner) - coarse(inner);
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
