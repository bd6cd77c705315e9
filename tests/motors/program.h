// SPDX-License-Identifier: GPL-2.0-or-later
// A program that runs beside the test, and what it says on its standard error.
#pragma once

#include <string>
#include <sys/types.h>
#include <unistd.h>
#include <vector>

namespace tesmor::test {

class Program {
public:
    // The first word is the program, looked for in PATH. Runs as `user`, who must be this one unless this is root.
    explicit Program(const std::vector<std::string>& words, uid_t user = geteuid());

    // Ends it, the hard way if it still runs.
    ~Program();

    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    // Whether it says so within ten seconds.
    bool says(const std::string& text);

    // All so far that `says` and `end` have read.
    const std::string& said() const
    {
        return said_;
    }

    void signal(int number) const;

    // Waits for its end; its exit status, or -1 when a signal ended it.
    int end();

    pid_t id() const
    {
        return id_;
    }

private:
    bool readOn();

    pid_t id_;
    int errors_;
    std::string said_;
};

// The exit status of a program that ends by itself; what it said goes to `said`.
int run(const std::vector<std::string>& words, std::string& said, uid_t user = geteuid());

} // namespace tesmor::test
