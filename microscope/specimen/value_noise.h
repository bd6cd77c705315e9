// SPDX-License-Identifier: GPL-2.0-or-later
// Smooth random fields.
#pragma once

#include <cstdint>

namespace tesmor::microscope {

class ValueNoise {
public:
    explicit ValueNoise(std::uint64_t seed) noexcept : seed_(seed) {}

    // A smooth field with details of size 1; -1 to 1.
    double at(double x, double y) const noexcept;

    // Octaves from details of size `coarsest` down to `finest`, each half the size of the one before and of `fading`
    // times its strength; about -1 to 1.
    double octaves(double x, double y, double coarsest, double finest, double fading) const noexcept;

private:
    const std::uint64_t seed_;
};

} // namespace tesmor::microscope
