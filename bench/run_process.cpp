// SPDX-License-Identifier: GPL-2.0-or-later
#include "run_process.h"

#include "ratio.h"

#include <algorithm>
#include <chrono>
#include <fcntl.h>
#include <fstream>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace tesmor::bench {

namespace {

// What a process has held at most. The kernel's account for a parent (ru_maxrss) would begin with what the parent held
// when it forked.
double peakBytesOf(pid_t process)
{
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string word; status >> word;) {
        double kilobytes = 0;
        if (word == "VmHWM:" && status >> kilobytes)
            return kilobytes * 1024.0;
    }
    return 0;
}

} // namespace

ProcessCost runProcess(const std::vector<std::string>& command, const std::string& variable)
{
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    int started[2]; // its writing end is closed by the exec
    if (pipe2(started, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    const double start = ElapsedTime::seconds();
    const pid_t child = fork();
    if (child == 0) {
        const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
        for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            dup2(nowhere, descriptor);
        putenv(const_cast<char*>(variable.c_str()));
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
    close(started[1]);
    char nothing = 0;
    (void)!read(started[0], &nothing, 1);
    close(started[0]);
    int status = 0;
    rusage usage{};
    double peakBytes = 0;
    while (wait4(child, &status, WNOHANG, &usage) == 0) {
        peakBytes = std::max(peakBytes, peakBytesOf(child));
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw std::runtime_error(command[0] + " failed");
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return {ElapsedTime::seconds() - start, seconds(usage.ru_utime) + seconds(usage.ru_stime), peakBytes};
}

} // namespace tesmor::bench
