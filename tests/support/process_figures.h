// SPDX-License-Identifier: GPL-2.0-or-later
// What a process holds at the moment, as the system counts it (Linux).
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace tesmor::test {

struct ProcessFigures {
    long threads = 0;
    long descriptors = 0;
    long residentKilobytes = 0;

    static ProcessFigures now()
    {
        ProcessFigures figures;
        figures.threads = entriesOf("/proc/self/task");
        figures.descriptors = entriesOf("/proc/self/fd") - 1; // without the one that looks
        long pages = 0;
        std::ifstream("/proc/self/statm") >> pages >> figures.residentKilobytes;
        figures.residentKilobytes *= sysconf(_SC_PAGESIZE) / 1024;
        return figures;
    }

private:
    static long entriesOf(const char* folder)
    {
        const std::filesystem::directory_iterator entries(folder);
        return static_cast<long>(std::distance(begin(entries), end(entries)));
    }
};

} // namespace tesmor::test
