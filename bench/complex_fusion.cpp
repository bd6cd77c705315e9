// SPDX-License-Identifier: GPL-2.0-or-later
#include "complex_fusion.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <fftw3.h>

namespace tesmor::bench {

namespace {

using Complex = std::complex<double>;

constexpr double TIE = 1e-9; // grey levels; a plan's rounding errors are smaller by a factor of a thousand

fftw_complex* fftw(std::vector<Complex>& values)
{
    return reinterpret_cast<fftw_complex*>(values.data());
}

class ComplexSharpening {
public:
    ComplexSharpening(int width, int height, unsigned flags)
        : width_(width), height_(height), plane_(static_cast<std::size_t>(width) * height), spectrum_(plane_.size()),
          forward_(fftw_plan_dft_2d(height, width, fftw(plane_), fftw(spectrum_), FFTW_FORWARD, flags)),
          backward_(fftw_plan_dft_2d(height, width, fftw(spectrum_), fftw(plane_), FFTW_BACKWARD, flags))
    {
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x)
                gains_.push_back(gain(x, y));
        }
    }
    ~ComplexSharpening()
    {
        fftw_destroy_plan(forward_);
        fftw_destroy_plan(backward_);
    }
    ComplexSharpening(const ComplexSharpening&) = delete;
    ComplexSharpening& operator=(const ComplexSharpening&) = delete;

    struct Sharpened {
        Bytes bytes;
        std::vector<bool> onATie;
    };

    // valueOf(i): pixel i's.
    template <class ValueOf>
    Sharpened run(ValueOf valueOf)
    {
        for (std::size_t i = 0; i < plane_.size(); ++i)
            plane_[i] = valueOf(i);
        fftw_execute(forward_);
        for (std::size_t i = 0; i < spectrum_.size(); ++i)
            spectrum_[i] = spectrum_[i] * (1.0 / gains_[0]) * gains_[i];
        fftw_execute(backward_);
        Sharpened sharpened;
        const double scale = 1.0 / static_cast<double>(plane_.size());
        for (const Complex& value : plane_) {
            const double square = value.real() * value.real() + value.imag() * value.imag();
            const double rounded = std::min(std::sqrt(square) * scale + 0.5, 255.0);
            sharpened.bytes.push_back(static_cast<std::uint8_t>(rounded));
            sharpened.onATie.push_back(std::abs(rounded - std::round(rounded)) < TIE && rounded < 255.0);
        }
        return sharpened;
    }

private:
    double gain(int x, int y) const
    {
        const double u = 1 - x * (2.0 / width_);
        const double v = 1 - y * (2.0 / height_);
        const double t = std::clamp(std::sqrt(v * v + u * u) / std::sqrt(2.0) - 0.65, 0.0, 1.0);
        return std::sin(t * 1.5707963267948966 - 3.141592653589793) + 1;
    }

    int width_;
    int height_;
    std::vector<double> gains_;
    std::vector<Complex> plane_;
    std::vector<Complex> spectrum_;
    fftw_plan forward_;
    fftw_plan backward_;
};

using Weights = std::vector<std::int32_t>;

// rows: height of them and one more of zeros.
void smooth(Weights& rows, int width, int height)
{
    const Weights before = rows;
    const auto at = [&](int x, int y) -> std::int32_t& { return rows[static_cast<std::size_t>(y) * width + x]; };
    const int right = width - 1, bottom = height - 1;
    for (int y = 1; y < bottom; ++y) {
        for (int x = 1; x < right; ++x) {
            std::int32_t sum = 0;
            for (int row = y - 1; row <= y + 1; ++row) {
                const std::int32_t* values = &before[static_cast<std::size_t>(row) * width + x];
                sum += values[-1] + values[0] + values[1];
            }
            at(x, y) = sum / 9;
        }
    }
    const auto sumOf = [&](int x0, int x1, int y0, int y1) {
        std::int32_t sum = 0;
        for (int y = y0; y <= y1; ++y) {
            for (int x = x0; x <= x1; ++x)
                sum += at(x, y);
        }
        return sum;
    };
    at(0, 0) = sumOf(0, 1, 0, 1) / 4;
    at(right, 0) = sumOf(right - 1, right, 0, 1) / 4;
    for (int x = 1; x < right; ++x) {
        at(x, 0) = sumOf(x - 1, x + 1, 0, 1) / 6;
        at(x, bottom) = sumOf(x - 1, x + 1, bottom - 1, bottom) / 6;
    }
    at(0, bottom) = sumOf(0, 1, bottom - 1, bottom) / 4;
    at(right, bottom) = sumOf(right - 1, right, bottom - 1, bottom) / 4;
    for (int y = 1; y <= bottom; ++y) {
        at(0, y) = sumOf(0, 1, y - 1, y + 1) / 6;
        at(right, y) = sumOf(right - 1, right, y - 1, y + 1) / 6;
    }
}

} // namespace

ComplexResult complexFusion(const std::vector<Bytes>& images, int width, int height, unsigned plannerFlags)
{
    ComplexSharpening sharpening(width, height, plannerFlags);
    const std::size_t count = static_cast<std::size_t>(width) * height;
    const std::size_t stride = images.front().size() / static_cast<std::size_t>(height);
    const auto offsetOf = [&](std::size_t i) { return i / width * stride + i % width * 3; };
    std::vector<float> sums(3 * count);
    Weights weightSums(count);
    for (const Bytes& image : images) {
        Weights weights(count + static_cast<std::size_t>(width));
        for (std::size_t colour = 0; colour < 3; ++colour) {
            const auto original = [&](std::size_t i) { return image[offsetOf(i) + colour]; };
            const Bytes sharpened = sharpening.run(original).bytes;
            for (std::size_t i = 0; i < count; ++i) {
                const int difference = original(i) - sharpened[i];
                const int term = difference * (difference - original(i) / 64);
                weights[i] += term < 4 ? 0 : term;
            }
        }
        for (int pass = 0; pass < 5; ++pass)
            smooth(weights, width, height);
        for (std::size_t i = 0; i < count; ++i) {
            const std::int32_t weight = std::max(weights[i], 1);
            weightSums[i] += weight;
            for (std::size_t colour = 0; colour < 3; ++colour) {
                const int value = image[offsetOf(i) + colour];
                sums[3 * i + colour] += static_cast<float>((value < 192 ? value : value - (value - 184) / 8) * weight);
            }
        }
    }
    ComplexResult output{Bytes(images.front().size()), std::vector<bool>(images.front().size())};
    for (std::size_t colour = 0; colour < 3; ++colour) {
        const auto sharpened =
            sharpening.run([&](std::size_t i) { return sums[3 * i + colour] / static_cast<float>(weightSums[i]); });
        for (std::size_t i = 0; i < count; ++i) {
            output.bytes[offsetOf(i) + colour] = sharpened.bytes[i];
            output.onATie[offsetOf(i) + colour] = sharpened.onATie[i];
        }
    }
    return output;
}

} // namespace tesmor::bench
