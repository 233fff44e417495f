// SPDX-License-Identifier: MIT
#pragma once

#include <cerrno>
#include <functional>

#include <sys/wait.h>
#include <unistd.h>

namespace havrel {

/// Runs \p block in a child of this process, for things that a process cannot undo (such as giving up privileges).
///
/// \return what the block answers (0 to 125), 126 when it throws, 128 + the signal when one ends it, -1 when there is
///         no child.
inline int resultInForkedChild(const std::function<int()>& block)
{
    const pid_t child = ::fork();
    if (child == 0) {
        try {
            ::_exit(block());
        } catch (...) {
            ::_exit(126);
        }
    }
    int status = 0;
    while (child > 0 && ::waitpid(child, &status, 0) < 0)
        if (errno != EINTR)
            return -1;
    if (child < 0)
        return -1;
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

} // namespace havrel
