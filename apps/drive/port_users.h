// SPDX-License-Identifier: GPL-2.0-or-later
// Which programs have a device open, as far as this user may see.
#pragma once

#include <string>

namespace tesmor::drive {

// "screen (process 1234)", several with commas; "another program" when none can be seen.
std::string usersOf(const std::string& device);

} // namespace tesmor::drive
