// SPDX-License-Identifier: GPL-2.0-or-later
// In place of the USB motor, in a build without libusb.
#include "drive/backends.h"

namespace tesmor::drive {

const bool HAS_USB = false;

std::unique_ptr<Motor> makeUsbMotor(const Options&)
{
    throw UsageError("this tesmor-drive was built without libusb; install libusb-1.0-0-dev and build it anew");
}

std::vector<FoundMotor> findUsbMotors()
{
    return {};
}

} // namespace tesmor::drive
