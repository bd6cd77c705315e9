// SPDX-License-Identifier: GPL-2.0-or-later
// A program that runs beside the test, and what it says on its standard error.
#pragma once

#include <array>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <sys/prctl.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace tesmor::test {

class Program {
public:
    // The first word is the program, looked for in PATH. Runs as `user`, who must be this one unless this is root.
    explicit Program(const std::vector<std::string>& words, uid_t user = geteuid())
    {
        std::vector<char*> arguments;
        for (const std::string& word : words)
            arguments.push_back(const_cast<char*>(word.c_str()));
        arguments.push_back(nullptr);
        std::array<int, 2> pipe{-1, -1};
        pipe2(pipe.data(), O_CLOEXEC);
        errors_ = pipe[0];
        id_ = fork();
        if (id_ == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            dup2(pipe[1], STDERR_FILENO);
            if (user != geteuid() && setuid(user) != 0)
                _exit(126);
            execvp(arguments[0], arguments.data());
            _exit(127);
        }
        close(pipe[1]);
    }

    // Ends it, the hard way if it still runs.
    ~Program()
    {
        if (id_ > 0) {
            signal(SIGKILL);
            waitpid(id_, nullptr, 0);
        }
        close(errors_);
    }

    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    // Whether it says so within ten seconds.
    bool says(const std::string& text)
    {
        while (said_.find(text) == std::string::npos) {
            if (!readOn())
                return false;
        }
        return true;
    }

    // All so far that `says` and `end` have read.
    const std::string& said() const
    {
        return said_;
    }

    void signal(int number) const
    {
        kill(id_, number);
    }

    // Waits for its end; its exit status, or -1 when a signal ended it.
    int end()
    {
        while (readOn()) {
        }
        int status = 0;
        waitpid(id_, &status, 0);
        id_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    pid_t id() const
    {
        return id_;
    }

private:
    bool readOn()
    {
        pollfd readable{errors_, POLLIN, 0};
        std::array<char, 512> text{};
        const ssize_t length = poll(&readable, 1, 10'000) > 0 ? read(errors_, text.data(), text.size()) : 0;
        said_.append(text.data(), static_cast<std::size_t>(length > 0 ? length : 0));
        return length > 0;
    }

    pid_t id_;
    int errors_;
    std::string said_;
};

// The exit status of a program that ends by itself; what it said goes to `said`.
inline int run(const std::vector<std::string>& words, std::string& said, uid_t user = geteuid())
{
    Program program(words, user);
    const int status = program.end();
    said = program.said();
    return status;
}

} // namespace tesmor::test
