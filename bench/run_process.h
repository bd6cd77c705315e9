// SPDX-License-Identifier: GPL-2.0-or-later
// Runs a program and tells what it cost.
#pragma once

#include <string>
#include <vector>

namespace tesmor::bench {

struct ProcessCost {
    double seconds;
    double processorSeconds; // of all its threads
    double peakBytes;
};

// Without standard input and output.
//   variable   of the environment, NAME=VALUE
// Throws std::runtime_error if it fails.
ProcessCost runProcess(const std::vector<std::string>& command, const std::string& variable);

} // namespace tesmor::bench
