// SPDX-License-Identifier: GPL-2.0-or-later
#include "motors/program.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>

namespace tesmor::test {

Program::Program(const std::vector<std::string>& words, uid_t user)
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

Program::~Program()
{
    if (id_ > 0) {
        signal(SIGKILL);
        waitpid(id_, nullptr, 0);
    }
    close(errors_);
}

bool Program::readOn()
{
    pollfd readable{errors_, POLLIN, 0};
    std::array<char, 512> text{};
    const ssize_t length = poll(&readable, 1, 10'000) > 0 ? read(errors_, text.data(), text.size()) : 0;
    said_.append(text.data(), static_cast<std::size_t>(length > 0 ? length : 0));
    return length > 0;
}

bool Program::says(const std::string& text)
{
    while (said_.find(text) == std::string::npos) {
        if (!readOn())
            return false;
    }
    return true;
}

void Program::signal(int number) const
{
    kill(id_, number);
}

int Program::end()
{
    while (readOn()) {
    }
    int status = 0;
    waitpid(id_, &status, 0);
    id_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int run(const std::vector<std::string>& words, std::string& said, uid_t user)
{
    Program program(words, user);
    const int status = program.end();
    said = program.said();
    return status;
}

} // namespace tesmor::test
