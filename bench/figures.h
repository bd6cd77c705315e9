// SPDX-License-Identifier: GPL-2.0-or-later
// The table that the benchmarks fill, one line a figure.
#pragma once

#include <string>

namespace tesmor::bench {

struct Figure {
    std::string work;
    std::string floor; // what the work is held against
    double aim;        // the ratio that it should not exceed
};

// Adds a line to the table. The quantities carry their unit.
void addFigure(const Figure& figure, const std::string& workQuantity, const std::string& floorQuantity, double ratio);

// The table so far, in Markdown, to standard output. Nothing when it is empty.
void printFigures();

} // namespace tesmor::bench
