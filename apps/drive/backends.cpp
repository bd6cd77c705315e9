// SPDX-License-Identifier: GPL-2.0-or-later
#include "drive/backends.h"

namespace tesmor::drive {

std::unique_ptr<Motor> makeMotor(const Options& options)
{
    switch (options.kind) {
    case Kind::usb:
        return makeUsbMotor(options);
    case Kind::gcode:
        return std::make_unique<GcodeMotor>(options.gcode);
    case Kind::sangaboard:
        return std::make_unique<SangaboardMotor>(options.sangaboard);
    case Kind::indi:
        break;
    }
    return makeIndiMotor(options);
}

std::vector<FoundMotor> findOtherMotors()
{
    std::vector<FoundMotor> found = findUsbMotors();
    for (FoundMotor& motor : findIndiMotors())
        found.push_back(std::move(motor));
    return found;
}

std::string builtWith()
{
    std::string text = "motors: gcode, sangaboard";
    text += HAS_USB ? ", usb" : "";
    text += HAS_INDI ? ", indi" : "";
    if (!HAS_USB)
        text += "; without usb (libusb was not there when it was built)";
    if (!HAS_INDI)
        text += "; without indi (the INDI client library was not there when it was built)";
    return text;
}

} // namespace tesmor::drive
