// SPDX-License-Identifier: GPL-2.0-or-later
#include "fusion/plain_fusion.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>

namespace tesmor::test {

namespace {

using Complex = std::complex<double>;
using Plane = std::vector<Complex>;

Plane transform(const Plane& from, int width, int height, int sign)
{
    const auto turn = [&](int k, int n) {
        return std::polar(1.0, sign * 2.0 * std::numbers::pi * static_cast<double>(static_cast<long>(k) % n) / n);
    };
    Plane rows(from.size()), both(from.size());
    for (int y = 0; y < height; ++y) {
        for (int u = 0; u < width; ++u) {
            for (int x = 0; x < width; ++x)
                rows[y * width + u] += from[y * width + x] * turn(u * x, width);
        }
    }
    for (int v = 0; v < height; ++v) {
        for (int u = 0; u < width; ++u) {
            for (int y = 0; y < height; ++y)
                both[v * width + u] += rows[y * width + u] * turn(v * y, height);
        }
    }
    return both;
}

double gainAt(int x, int y, int width, int height)
{
    const double u = 1 - x * (2.0 / width);
    const double v = 1 - y * (2.0 / height);
    const double t = std::clamp(std::sqrt(v * v + u * u) / std::sqrt(2.0) - 0.65, 0.0, 1.0);
    return std::sin(t * std::numbers::pi / 2 - std::numbers::pi) + 1;
}

std::vector<std::uint8_t> sharpenPlane(const Plane& plane, int width, int height)
{
    Plane spectrum = transform(plane, width, height, -1);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            spectrum[y * width + x] *= gainAt(x, y, width, height) / gainAt(0, 0, width, height);
    }
    std::vector<std::uint8_t> bytes;
    for (const Complex& value : transform(spectrum, width, height, +1))
        bytes.push_back(static_cast<std::uint8_t>(std::min(std::abs(value) / (width * height) + 0.5, 255.0)));
    return bytes;
}

// `valueAt` gives a pixel's channel.
PlainImage sharpenValues(int width, int height, const std::function<double(int x, int y, int channel)>& valueAt)
{
    PlainImage sharpened(width, height);
    for (int channel = 0; channel < 3; ++channel) {
        Plane plane;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x)
                plane.emplace_back(valueAt(x, y, channel));
        }
        const auto bytes = sharpenPlane(plane, width, height);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x)
                sharpened.at(x, y, channel) = bytes[y * width + x];
        }
    }
    return sharpened;
}

std::vector<std::int32_t> plainSmoothing(const std::vector<std::int32_t>& measure, int width, int height)
{
    std::vector<std::int32_t> smooth = measure;
    const int right = width - 1, bottom = height - 1;
    const auto at = [&](int x, int y) -> std::int32_t& { return smooth[y * width + x]; };
    // The sum of what lies in a box, rows below the last one counting as 0.
    const auto boxOf = [&](const std::vector<std::int32_t>& values, int x0, int x1, int y0, int y1) {
        std::int32_t sum = 0;
        for (int y = y0; y <= std::min(y1, bottom); ++y) {
            for (int x = x0; x <= x1; ++x)
                sum += values[y * width + x];
        }
        return sum;
    };
    for (int y = 1; y < bottom; ++y) {
        for (int x = 1; x < right; ++x)
            at(x, y) = boxOf(measure, x - 1, x + 1, y - 1, y + 1) / 9;
    }
    at(0, 0) = boxOf(smooth, 0, 1, 0, 1) / 4;
    at(right, 0) = boxOf(smooth, right - 1, right, 0, 1) / 4;
    for (int x = 1; x < right; ++x) {
        at(x, 0) = boxOf(smooth, x - 1, x + 1, 0, 1) / 6;
        at(x, bottom) = boxOf(smooth, x - 1, x + 1, bottom - 1, bottom) / 6;
    }
    at(0, bottom) = boxOf(smooth, 0, 1, bottom - 1, bottom) / 4;
    at(right, bottom) = boxOf(smooth, right - 1, right, bottom - 1, bottom) / 4;
    for (int y = 1; y <= bottom; ++y) {
        at(0, y) = boxOf(smooth, 0, 1, y - 1, y + 1) / 6;
        at(right, y) = boxOf(smooth, right - 1, right, y - 1, y + 1) / 6;
    }
    return smooth;
}

std::vector<std::int32_t> weightsOf(PlainImage& image)
{
    PlainImage sharpened = sharpenValues(image.width, image.height,
                                         [&](int x, int y, int channel) { return double(image.at(x, y, channel)); });
    std::vector<std::int32_t> weights;
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            int sum = 0;
            for (int channel = 0; channel < 3; ++channel) {
                const int original = image.at(x, y, channel);
                const int difference = original - sharpened.at(x, y, channel);
                const int term = difference * (difference - original / 64);
                sum += term < 4 ? 0 : term;
            }
            weights.push_back(sum);
        }
    }
    for (int pass = 0; pass < 5; ++pass)
        weights = plainSmoothing(weights, image.width, image.height);
    for (auto& weight : weights)
        weight = weight == 0 ? 1 : weight;
    return weights;
}

} // namespace

PlainImage::PlainImage(int w, int h) : width(w), height(h), stride((w * 24 + 31) / 32 * 4), bytes(stride * h) {}

std::uint8_t& PlainImage::at(int x, int y, int channel)
{
    return bytes[y * stride + x * 3 + channel];
}

PlainImage plainFusion(std::vector<PlainImage> images)
{
    const int width = images.front().width, height = images.front().height;
    std::vector<float> sums(static_cast<std::size_t>(width) * height * 3);
    std::vector<std::int32_t> weightSums(static_cast<std::size_t>(width) * height);
    for (PlainImage& image : images) {
        const auto weights = weightsOf(image);
        for (int i = 0; i < width * height; ++i) {
            weightSums[i] += weights[i];
            for (int channel = 0; channel < 3; ++channel) {
                const int value = image.at(i % width, i / width, channel);
                const int compressed = value < 192 ? value : value - (value - 184) / 8;
                sums[i * 3 + channel] += static_cast<float>(compressed * weights[i]);
            }
        }
    }
    return sharpenValues(width, height, [&](int x, int y, int channel) {
        const int i = y * width + x;
        return sums[i * 3 + channel] / static_cast<float>(weightSums[i]);
    });
}

} // namespace tesmor::test
