// SPDX-License-Identifier: GPL-2.0-or-later
// One line on the standard error, where the terminal or the journal shows it.
#pragma once

#include <cstdio>
#include <string>

namespace tesmor::drive {

inline void logLine(const std::string& text)
{
    std::fprintf(stderr, "tesmor-drive: %s\n", text.c_str());
}

} // namespace tesmor::drive
