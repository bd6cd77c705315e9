// SPDX-License-Identifier: GPL-2.0-or-later
// The speed of a serial port. Apart from the rest, since the system's headers for it and <termios.h> exclude each
// other.
#pragma once

namespace tesmor::drive {

// Any number of bits a second, as far as the port can; false when it cannot.
bool setSerialSpeed(int descriptor, unsigned baud);

} // namespace tesmor::drive
