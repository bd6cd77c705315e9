// SPDX-License-Identifier: GPL-2.0-or-later
// In place of the INDI focuser, in a build without its client library.
#include "drive/backends.h"

namespace tesmor::drive {

const bool HAS_INDI = false;

std::unique_ptr<Motor> makeIndiMotor(const Options&)
{
    throw UsageError("this tesmor-drive was built without INDI; install libindi-dev and build it anew");
}

std::vector<FoundMotor> findIndiMotors()
{
    return {};
}

} // namespace tesmor::drive
