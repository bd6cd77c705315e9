// SPDX-License-Identifier: GPL-2.0-or-later
// What an objective does to things out of focus.
#pragma once

#include <algorithm>
#include <cstdint>

namespace tesmor::microscope {

// One turn of the motor, 12800 steps, moves the focus by 25 um: the fine focus, 100 um a turn, behind a 4:1 gear.
inline constexpr double STEPS_PER_MICROMETRE = 512;

inline constexpr double WAVELENGTH_UM = 0.55;      // of the light
inline constexpr double CONDENSER_APERTURE = 0.65; // numerical, of a simple condenser
inline constexpr double SENSOR_PIXEL_UM = 3.45;    // of a sensor with FIELD_WIDTH pixels in a row

struct Objective {
    std::uint16_t magnification;
    double aperture;        // numerical
    double refractiveIndex; // between objective and specimen

    // That of objective and condenser together, as it counts in transmitted light.
    constexpr double workingAperture() const
    {
        return (aperture + std::min(aperture, CONDENSER_APERTURE)) / 2;
    }

    // The whole depth of field, diffraction and sensor resolution together: lambda n / NA^2 + n e / (M NA).
    // S. Inoue and R. Oldenbourg, Microscopes, in: Handbook of Optics, volume II, 2nd edition (1995).
    constexpr double depthOfFieldSteps() const
    {
        const double diffraction = WAVELENGTH_UM * refractiveIndex / (workingAperture() * workingAperture());
        const double sensor = refractiveIndex * SENSOR_PIXEL_UM / (magnification * workingAperture());
        return (diffraction + sensor) * STEPS_PER_MICROMETRE;
    }

    // A point out of focus becomes a disc, cut out of the cone of light whose half angle has the sine NA / n (taken for
    // its tangent). Standard deviation of a disc of that diameter, in sensor pixels, for each motor step of defocus: a
    // quarter of the diameter.
    constexpr double blurPerStep() const
    {
        const double discPerMicrometre = 2 * workingAperture() / refractiveIndex * magnification / SENSOR_PIXEL_UM;
        return discPerMicrometre / 4 / STEPS_PER_MICROMETRE;
    }
};

inline constexpr Objective OBJECTIVES[] = {
    {4, 0.10, 1.0},  {10, 0.25, 1.0}, {20, 0.40, 1.0},    {40, 0.65, 1.0},
    {60, 0.85, 1.0}, {80, 0.90, 1.0}, {100, 1.25, 1.515}, // the last in oil
};

// Null for a magnification that no objective has.
constexpr const Objective* findObjective(std::uint16_t magnification)
{
    for (const Objective& objective : OBJECTIVES) {
        if (objective.magnification == magnification)
            return &objective;
    }
    return nullptr;
}

} // namespace tesmor::microscope
