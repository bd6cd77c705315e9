// SPDX-License-Identifier: GPL-2.0-or-later
#include "registration/frame_registration.h"

#include "registration/opencv.h"

#include <opencv2/video/tracking.hpp>

#include <algorithm>
#include <cmath>
#include <vector>

namespace tesmor::apps {

namespace {

constexpr double MOST_PIXELS = 800'000;  // of the finest level
constexpr int COARSEST_SIDE = 100;       // pixels, of the coarsest level's shorter side, at least
constexpr double LEAST_DEVIATION = 0.25; // grey levels, of a coarsest level that shows anything
constexpr double LEAST_CORRELATION = 0.5;
constexpr double MOST_SHIFT = 1.0 / 3; // of the frame's sides
constexpr double MOST_GROWTH = 0.1;
constexpr double MOST_TURN = 0.2;        // radians
constexpr double MOST_DISTORTION = 0.02; // of an affine map that ought to be a similarity
constexpr int ITERATIONS = 50;
constexpr double PRECISION = 1e-5; // of the correlation, at which an iteration ends
constexpr int SMOOTHING = 3;       // pixels, at every level

struct Fit {
    Placement placement; // in pixels of the level
    double correlation;
};

// The similarity that moves the points of the frame least from where the affine map has them.
std::optional<Placement> similarityOf(const cv::Mat1f& affine, cv::Size size)
{
    const double x = (size.width - 1) / 2.0;
    const double y = (size.height - 1) / 2.0;
    const double a = affine(0, 0), b = affine(0, 1), c = affine(1, 0), d = affine(1, 1);
    if (!(std::hypot(a - d, b + c) / 2 < MOST_DISTORTION))
        return std::nullopt;
    const double share = x * x / (x * x + y * y);
    const double cosine = share * a + (1 - share) * d;
    const double sine = share * c - (1 - share) * b;
    return Placement{std::hypot(cosine, sine), std::atan2(sine, cosine), a * x + b * y + affine(0, 2) - x,
                     c * x + d * y + affine(1, 2) - y};
}

// From that placement on. Nothing if it leads nowhere.
std::optional<Fit> refine(const cv::Mat& frame, const cv::Mat& reference, const Placement& start)
{
    cv::Mat affine;
    cv::Mat(matrixOf(start, reference.size())).convertTo(affine, CV_32F);
    try {
        const double correlation = cv::findTransformECC(
            reference, frame, affine, cv::MOTION_AFFINE,
            {cv::TermCriteria::COUNT | cv::TermCriteria::EPS, ITERATIONS, PRECISION}, cv::noArray(), SMOOTHING);
        const auto placement = similarityOf(affine, reference.size());
        if (!placement)
            return std::nullopt;
        return Fit{*placement, correlation};
    } catch (const cv::Exception& error) {
        if (error.code == cv::Error::StsNoConv)
            return std::nullopt;
        throw;
    }
}

bool isPlausible(const Placement& placement, cv::Size size)
{
    return std::abs(placement.scale - 1) < MOST_GROWTH && std::abs(placement.angle) < MOST_TURN &&
           std::abs(placement.right) < MOST_SHIFT * size.width && std::abs(placement.down) < MOST_SHIFT * size.height;
}

// Where it is halved, from the finest level to the coarsest.
std::vector<cv::Mat> pyramid(const QImage& image)
{
    std::vector<cv::Mat> levels{withoutShading(greyOf(image, MOST_PIXELS))};
    while (std::min(levels.back().cols, levels.back().rows) >= 2 * COARSEST_SIDE) {
        cv::Mat half;
        cv::resize(levels.back(), half, {(levels.back().cols + 1) / 2, (levels.back().rows + 1) / 2}, 0, 0,
                   cv::INTER_AREA);
        levels.push_back(half);
    }
    return levels;
}

Placement scaled(Placement placement, cv::Size from, cv::Size to)
{
    placement.right *= static_cast<double>(to.width) / from.width;
    placement.down *= static_cast<double>(to.height) / from.height;
    return placement;
}

double deviation(const cv::Mat& level)
{
    cv::Scalar mean, deviation;
    cv::meanStdDev(level, mean, deviation);
    return deviation[0];
}

// The better one of two starts: no shift, and the shift that correlates most.
std::optional<Fit> findCoarsely(const cv::Mat& frame, const cv::Mat& reference)
{
    if (std::min(deviation(frame), deviation(reference)) < LEAST_DEVIATION)
        return std::nullopt;
    const auto still = refine(frame, reference, {});
    const cv::Point2d shift = shiftBetween(reference, frame).pixels;
    const auto shifted = refine(frame, reference, {1, 0, shift.x, shift.y});
    if (!still || !shifted)
        return still ? still : shifted;
    return still->correlation > shifted->correlation ? still : shifted;
}

} // namespace

std::optional<Placement> registerFrame(const QImage& frame, const QImage& reference)
{
    return withoutOpenCvErrors([&]() -> std::optional<Placement> {
        const std::vector<cv::Mat> ofFrame = pyramid(frame);
        const std::vector<cv::Mat> ofReference = pyramid(reference);
        std::optional<Fit> fit = findCoarsely(ofFrame.back(), ofReference.back());
        for (std::size_t level = ofFrame.size() - 1; fit && level-- > 0;)
            fit = refine(ofFrame[level], ofReference[level],
                         scaled(fit->placement, ofFrame[level + 1].size(), ofFrame[level].size()));
        if (!fit || fit->correlation < LEAST_CORRELATION)
            return std::nullopt;
        const cv::Size size(frame.width(), frame.height());
        const Placement placement = scaled(fit->placement, sizeWithin(size, MOST_PIXELS), size);
        return isPlausible(placement, size) ? std::optional(placement) : std::nullopt;
    });
}

std::uint64_t registrationMemory(QSize size)
{
    constexpr double BYTES_PER_PIXEL = 80; // of the finest level; measured
    return static_cast<std::uint64_t>(BYTES_PER_PIXEL * std::min(MOST_PIXELS, 1.0 * size.width() * size.height()));
}

} // namespace tesmor::apps
