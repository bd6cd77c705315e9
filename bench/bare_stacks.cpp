// SPDX-License-Identifier: GPL-2.0-or-later
// bare_stacks WIDTH HEIGHT IMAGES STACKS: prints how many seconds the transforms of so many stacks take, planned once,
// on one thread, without a file read or written.
#include "bare_transforms.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv)
{
    if (argc != 5) {
        std::fputs("usage: bare_stacks WIDTH HEIGHT IMAGES STACKS\n", stderr);
        return 2;
    }
    using Clock = std::chrono::steady_clock;
    tesmor::bench::BareTransforms transforms(std::atoi(argv[1]), std::atoi(argv[2]), std::atoi(argv[3]));
    transforms.plan();
    const Clock::time_point start = Clock::now();
    for (int stack = std::atoi(argv[4]); stack > 0; --stack) {
        transforms.fill();
        transforms.run();
    }
    std::printf("%.2f\n", std::chrono::duration<double>(Clock::now() - start).count());
    return 0;
}
