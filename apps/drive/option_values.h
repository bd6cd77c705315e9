// SPDX-License-Identifier: GPL-2.0-or-later
// The values of the command line, each checked; all throw UsageError with what would be right.
#pragma once

#include "drive/options.h"

#include <string>

namespace tesmor::drive {

inline constexpr std::int64_t MOST_STEPS = 1'000'000'000; // to either side

std::int64_t integerOf(const std::string& option, const std::string& text, std::int64_t low, std::int64_t high);
double numberOf(const std::string& option, const std::string& text);
char axisOf(const std::string& text);

void setLimit(TravelSettings& travel, const std::string& text);
void setGear(TravelSettings& travel, const std::string& text);
void setUsbDevice(Options& options, const std::string& text);
void setEndpoint(Options& options, const std::string& text);
void setServer(Options& options, const std::string& text);

} // namespace tesmor::drive
