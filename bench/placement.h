// SPDX-License-Identifier: GPL-2.0-or-later
// Where the threads of a measurement run. A wake-up within one processor and one across two differ several times over,
// so floor and work of a hand-over are placed alike: not as the scheduler happens to.
#pragma once

#include <sched.h>
#include <stdexcept>
#include <string>

namespace tesmor::bench {

// The processors of the main thread, as they were at the first call.
inline const cpu_set_t& processors()
{
    static const cpu_set_t all = [] {
        cpu_set_t set;
        if (sched_getaffinity(0, sizeof set, &set) != 0)
            throw std::runtime_error("the processors of this program are not to be had");
        return set;
    }();
    return all;
}

// While it lives the calling thread runs on one of the processors, counted from 0; a thread that it starts meanwhile
// stays there for good.
class OnProcessor {
public:
    explicit OnProcessor(int number)
    {
        int processor = 0;
        for (int left = number; processor < CPU_SETSIZE; ++processor) {
            if (CPU_ISSET(processor, &processors()) && left-- == 0)
                break;
        }
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(processor, &one);
        if (sched_getaffinity(0, sizeof before_, &before_) != 0 || sched_setaffinity(0, sizeof one, &one) != 0)
            throw std::runtime_error("there is no processor " + std::to_string(number));
    }
    ~OnProcessor()
    {
        sched_setaffinity(0, sizeof before_, &before_);
    }
    OnProcessor(const OnProcessor&) = delete;
    OnProcessor& operator=(const OnProcessor&) = delete;

private:
    cpu_set_t before_;
};

// The host's side of a hand-over is on processor 0, the other side there as well or on processor 1.
inline std::string placementText(int otherSide)
{
    return otherSide == 0 ? ", one processor" : ", two processors";
}

} // namespace tesmor::bench
