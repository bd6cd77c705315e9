// SPDX-License-Identifier: GPL-2.0-or-later
// The focus drives of this machine, looked for as any host may do it: on the drive link itself. Who does not open a
// drive holds nothing, so looking takes no drive away from anybody.
#pragma once

#include <sys/types.h>

#include <vector>

namespace tesmor::apps {

enum class DriveState {
    answers,
    busy,    // it serves another program
    foreign, // its service runs as a user whom the library does not trust: neither root nor the user of this program
    silent,  // there is a service, but it did not reply within a second
};

struct DriveUnit {
    unsigned number; // 0 to 15
    DriveState state;
    uid_t owner; // the user as whom its service runs; of a silent one it may be unknown, and 0
};

// All units that exist, lowest first; the library takes the first of them that is not foreign. Nothing moves. Blocks
// for a second for each silent unit.
std::vector<DriveUnit> findDriveUnits();

} // namespace tesmor::apps
