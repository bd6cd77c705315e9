// SPDX-License-Identifier: GPL-2.0-or-later
// The motors that this build knows: those behind libusb and INDI need these libraries.
#pragma once

#include "drive/motor.h"
#include "drive/options.h"

#include <memory>
#include <string>
#include <vector>

namespace tesmor::drive {

// Throws UsageError when this build is without what it needs.
std::unique_ptr<Motor> makeMotor(const Options& options);

struct FoundMotor {
    std::string what;
    std::string arguments; // to use it
};

// But for serial ports: USB devices that could be one, and focusers of the INDI server on this computer.
std::vector<FoundMotor> findOtherMotors();

// "usb, gcode, sangaboard, indi", and what is not in.
std::string builtWith();

// Each pair comes from one of two files: usb_backend.cpp or usb_missing.cpp, indi_backend.cpp or indi_missing.cpp.
std::unique_ptr<Motor> makeUsbMotor(const Options& options);
std::vector<FoundMotor> findUsbMotors();
std::unique_ptr<Motor> makeIndiMotor(const Options& options);
std::vector<FoundMotor> findIndiMotors();
extern const bool HAS_USB;
extern const bool HAS_INDI;

} // namespace tesmor::drive
