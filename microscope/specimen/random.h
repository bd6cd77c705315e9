// SPDX-License-Identifier: GPL-2.0-or-later
// Random numbers that depend on the seed alone, not on the standard library.
#pragma once

#include <cmath>
#include <cstdint>
#include <numbers>

namespace tesmor::microscope {

// The finaliser of SplitMix64 (Steele, Lea, Flood: Fast splittable pseudorandom number generators, 2014).
constexpr std::uint64_t scramble(std::uint64_t x) noexcept
{
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9u;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EBu;
    return x ^ (x >> 31);
}

class Random {
public:
    explicit Random(std::uint64_t seed) noexcept : state_(scramble(seed)) {}

    std::uint64_t bits() noexcept
    {
        return scramble(state_ += 0x9E3779B97F4A7C15u);
    }

    // At least 0, less than 1.
    double uniform() noexcept
    {
        return static_cast<double>(bits() >> 11) * 0x1p-53;
    }

    double between(double low, double high) noexcept
    {
        return low + (high - low) * uniform();
    }

    // Mean 0, standard deviation 1 (Box and Muller).
    double normal() noexcept
    {
        const double radius = std::sqrt(-2 * std::log(1 - uniform()));
        return radius * std::cos(2 * std::numbers::pi * uniform());
    }

private:
    std::uint64_t state_;
};

} // namespace tesmor::microscope
