// SPDX-License-Identifier: GPL-2.0-or-later
#include "figures.h"

#include <cstdio>
#include <vector>

namespace tesmor::bench {

namespace {

struct Line {
    Figure figure;
    std::string workQuantity;
    std::string floorQuantity;
    double ratio;
};

std::vector<Line> lines;

} // namespace

void addFigure(const Figure& figure, const std::string& workQuantity, const std::string& floorQuantity, double ratio)
{
    lines.push_back({figure, workQuantity, floorQuantity, ratio});
}

void printFigures()
{
    if (lines.empty())
        return;
    std::printf("\n| work | takes | floor | takes | ratio | aim | |\n| --- | --: | --- | --: | --: | --: | --- |\n");
    for (const Line& line : lines) {
        std::printf("| %s | %s | %s | %s | %.2f | %.2f | %s |\n", line.figure.work.c_str(), line.workQuantity.c_str(),
                    line.figure.floor.c_str(), line.floorQuantity.c_str(), line.ratio, line.figure.aim,
                    line.ratio <= line.figure.aim ? "met" : "missed");
    }
}

} // namespace tesmor::bench
