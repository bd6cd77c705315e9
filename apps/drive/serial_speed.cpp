// SPDX-License-Identifier: GPL-2.0-or-later
#include "drive/serial_speed.h"

#include <asm/ioctls.h>
#include <asm/termbits.h>
#include <sys/ioctl.h>

namespace tesmor::drive {

bool setSerialSpeed(int descriptor, unsigned baud)
{
    termios2 settings{};
    if (ioctl(descriptor, TCGETS2, &settings) != 0)
        return false;
    settings.c_cflag &= ~static_cast<tcflag_t>(CBAUD | CBAUD << IBSHIFT);
    settings.c_cflag |= BOTHER;
    settings.c_ispeed = settings.c_ospeed = baud;
    return ioctl(descriptor, TCSETS2, &settings) == 0;
}

} // namespace tesmor::drive
