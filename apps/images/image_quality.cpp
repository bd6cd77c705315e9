// SPDX-License-Identifier: GPL-2.0-or-later
#include "images/image_quality.h"

#include <cmath>
#include <cstdint>
#include <vector>

namespace tesmor::apps {

namespace {

constexpr int CHANNELS = 3;

// Brightness in grey levels, row by row.
std::vector<float> brightness(const QImage& image)
{
    std::vector<float> values;
    values.reserve(static_cast<std::size_t>(image.width()) * static_cast<std::size_t>(image.height()));
    for (int y = 0; y < image.height(); ++y) {
        const uchar* pixel = image.constScanLine(y);
        for (int x = 0; x < image.width(); ++x, pixel += CHANNELS)
            values.push_back(0.114f * pixel[0] + 0.587f * pixel[1] + 0.299f * pixel[2]);
    }
    return values;
}

constexpr int WINDOW = 8; // pixels
constexpr int WINDOW_STEP = 4;

// Of the windows of two images that start at a and b.
double windowSimilarity(const float* a, const float* b, int width)
{
    double sumA = 0, sumB = 0, squaresA = 0, squaresB = 0, products = 0;
    for (int y = 0; y < WINDOW; ++y, a += width, b += width) {
        for (int x = 0; x < WINDOW; ++x) {
            sumA += a[x];
            sumB += b[x];
            squaresA += a[x] * a[x];
            squaresB += b[x] * b[x];
            products += a[x] * b[x];
        }
    }
    constexpr double COUNT = WINDOW * WINDOW;
    constexpr double C1 = 0.01 * 255 * 0.01 * 255;
    constexpr double C2 = 0.03 * 255 * 0.03 * 255;
    const double meanA = sumA / COUNT;
    const double meanB = sumB / COUNT;
    const double varianceA = squaresA / COUNT - meanA * meanA;
    const double varianceB = squaresB / COUNT - meanB * meanB;
    const double covariance = products / COUNT - meanA * meanB;
    return (2 * meanA * meanB + C1) * (2 * covariance + C2) /
           ((meanA * meanA + meanB * meanB + C1) * (varianceA + varianceB + C2));
}

} // namespace

double edgeSharpness(const QImage& image)
{
    const std::vector<float> values = brightness(image);
    const int width = image.width();
    double squares = 0;
    for (int y = 1; y + 1 < image.height(); ++y) {
        for (int x = 1; x + 1 < width; ++x) {
            // Sobel's differences: smoothed across, so that noise counts less
            const float* const p =
                &values[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
            const double right = p[1 - width] + 2 * p[1] + p[1 + width] - p[-1 - width] - 2 * p[-1] - p[-1 + width];
            const double down =
                p[width - 1] + 2 * p[width] + p[width + 1] - p[-width - 1] - 2 * p[-width] - p[-width + 1];
            squares += (right * right + down * down) / 64;
        }
    }
    return std::sqrt(squares / (image.width() - 2) / (image.height() - 2));
}

double psnr(const QImage& image, const QImage& reference)
{
    std::uint64_t squares = 0;
    for (int y = 0; y < image.height(); ++y) {
        const uchar* const a = image.constScanLine(y);
        const uchar* const b = reference.constScanLine(y);
        for (int i = 0; i < CHANNELS * image.width(); ++i)
            squares += static_cast<std::uint64_t>((a[i] - b[i]) * (a[i] - b[i]));
    }
    const double mean = static_cast<double>(squares) / CHANNELS / image.width() / image.height();
    return 10 * std::log10(255.0 * 255.0 / mean);
}

double ssim(const QImage& image, const QImage& reference)
{
    const std::vector<float> a = brightness(image);
    const std::vector<float> b = brightness(reference);
    const int width = image.width();
    double sum = 0;
    int count = 0;
    for (int y = 0; y + WINDOW <= image.height(); y += WINDOW_STEP) {
        for (int x = 0; x + WINDOW <= width; x += WINDOW_STEP, ++count) {
            const std::size_t start =
                static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
            sum += windowSimilarity(&a[start], &b[start], width);
        }
    }
    return sum / count;
}

} // namespace tesmor::apps
