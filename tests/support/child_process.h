// SPDX-License-Identifier: GPL-2.0-or-later
// Linux: runs something in a process of its own.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

namespace tesmor::test {

constexpr uid_t NOBODY = 65534;

// What `action` returns, 0 to 255, in a copy of this process; the negative signal when one ended it.
template <class Action>
int endOfChild(Action action)
{
    const pid_t child = fork();
    if (child == 0)
        _exit(action());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

} // namespace tesmor::test
