// SPDX-License-Identifier: GPL-2.0-or-later
#include "microscope/settings.h"

#include "microscope/camera/objective.h"

#include <cmath>
#include <stdexcept>
#include <utility>

namespace tesmor::microscope {

namespace {

void require(bool holds, const char* message)
{
    if (!holds)
        throw std::invalid_argument(message);
}

} // namespace

Settings checkedSettings(Settings settings)
{
    require(findObjective(settings.magnification) != nullptr, "magnification must be 4, 10, 20, 40, 60, 80 or 100");
    require(settings.unit < 16, "unit must be 0 to 15");
    require(settings.framesPerSecond >= 0, "frames per second must not be negative");
    require(settings.noise >= 0 && settings.noise <= 20, "noise must be 0 to 20 grey levels");
    require(std::abs(settings.motion.breathing) <= 0.01, "breathing must be -0.01 to 0.01 for each depth of field");
    require(settings.motion.drift >= 0 && settings.motion.drift <= 64, "drift must be 0 to 64 pixels");
    require(settings.motion.turn >= 0 && settings.motion.turn <= 5, "turn must be 0 to 5 degrees");
    require(settings.timeScale >= 0, "time scale must not be negative");
    require(settings.motor.stepsPerSecond >= 0, "motor speed must not be negative");
    require(settings.motor.lowEnd <= settings.motor.highEnd, "the low end stop must not lie above the high one");
    if (settings.photos && !settings.photos->images.empty()) {
        settings.width = settings.photos->images.front().width;
        settings.height = settings.photos->images.front().height;
        settings.motion = {};
    }
    require(settings.width >= 64 && settings.width <= 16384, "frame width must be 64 to 16384 pixels");
    require(settings.height >= 64 && settings.height <= 16384, "frame height must be 64 to 16384 pixels");
    return settings;
}

} // namespace tesmor::microscope
