// SPDX-License-Identifier: GPL-2.0-or-later
// What on this computer could be a motor, with the command to type.
#pragma once

namespace tesmor::drive {

// Prints it; opens no port, since many boards begin anew when that happens. False when there is nothing.
bool listMotors();

} // namespace tesmor::drive
