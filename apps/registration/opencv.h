// SPDX-License-Identifier: GPL-2.0-or-later
// What our use of OpenCV has in common; only for the sources of this folder.
#pragma once

#include "registration/placement.h"

#include <QImage>

#include <opencv2/imgproc.hpp>

#include <new>

namespace tesmor::apps {

// The image's own pixels, of format BGR888. Read-only if the image is const.
cv::Mat matOf(QImage& image);
cv::Mat matOf(const QImage& image);

// Made smaller until it has at most so many pixels.
cv::Size sizeWithin(cv::Size size, double mostPixels);

// Brightness in grey levels as floats, of sizeWithin.
cv::Mat greyOf(const QImage& image, double mostPixels);

// Without uneven illumination and brightness: what is coarser than a sixteenth of the frame is taken away, and a
// thirty-second of it at each side.
cv::Mat withoutShading(const cv::Mat& grey);

// From pixels of the reference to pixels of the frame, both of that size.
cv::Matx23d matrixOf(const Placement& placement, cv::Size size);

struct Shift {
    cv::Point2d pixels; // right and down
    double peak;        // the share of both images' detail that agrees on it, 0 to 1
};

// Of `shown` against `reference`, from the correlation of their phases.
Shift shiftBetween(const cv::Mat& reference, const cv::Mat& shown);

// Runs the function; OpenCV's lack of memory becomes std::bad_alloc.
template <class Function>
auto withoutOpenCvErrors(const Function& function)
{
    try {
        return function();
    } catch (const cv::Exception& error) {
        if (error.code == cv::Error::StsNoMem)
            throw std::bad_alloc();
        throw;
    }
}

} // namespace tesmor::apps
