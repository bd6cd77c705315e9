// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include "microscope/camera/photo_scene.h"
#include "microscope/camera/picture_motion.h"
#include "microscope/drive/faults.h"
#include "microscope/drive/motor.h"

#include <cstdint>
#include <optional>

namespace tesmor::microscope {

struct Settings {
    std::uint64_t seed = 1;           // of the specimen and the noise
    std::uint16_t magnification = 10; // of the objective: 4, 10, 20, 40, 60, 80 or 100
    std::int32_t width = 1280;        // of a frame, pixels, at least 64; the field of view is the same at any width
    std::int32_t height = 960;        // likewise
    std::int64_t startOffset = 0;     // where the motor stands at first: motor steps forward of the best focus
    unsigned unit = 0;                // of the drive, 0 to 15; the library takes the lowest unit that answers

    double framesPerSecond = 30; // 0: no camera thread, frames come from deliverFrame alone
    double noise = 1.5;          // grey levels, standard deviation at full brightness, 0 to 20; photographs get none
    double timeScale = 1;        // motor and camera run this many times faster than real; 0: they take no time at
                                 // all, and the camera delivers frames as fast as it can
    MotorSettings motor;
    MotionSettings motion;             // of the picture; photographs get none
    Faults faults;                     // at first
    std::optional<PhotoPlanes> photos; // instead of the specimen; they set the frame's size
};

// The settings with the size of the photographs, if there are any. Throws std::invalid_argument, naming the setting,
// when one is outside its range.
Settings checkedSettings(Settings settings);

} // namespace tesmor::microscope
