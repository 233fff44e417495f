// SPDX-License-Identifier: MIT
#include "platform/child_process.h"

#include "platform/argument_vector.h"

#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace havrel::platform {
namespace {

class OwnedFileActions
{
public:
    OwnedFileActions() { m_failure = ::posix_spawn_file_actions_init(&m_actions); }
    ~OwnedFileActions() { ::posix_spawn_file_actions_destroy(&m_actions); }
    OwnedFileActions(const OwnedFileActions&) = delete;
    OwnedFileActions& operator=(const OwnedFileActions&) = delete;
    OwnedFileActions(OwnedFileActions&&) = delete;
    OwnedFileActions& operator=(OwnedFileActions&&) = delete;

    /// The output comes first: it may be the descriptor that the input replaces.
    int redirect(int standardOutput)
    {
        if (m_failure == 0)
            m_failure = ::posix_spawn_file_actions_adddup2(&m_actions, standardOutput, STDOUT_FILENO);
        if (m_failure == 0)
            m_failure = ::posix_spawn_file_actions_addopen(&m_actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        return m_failure;
    }
    [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &m_actions; }

private:
    posix_spawn_file_actions_t m_actions{};
    int m_failure = 0;
};

class OwnedSpawnAttributes
{
public:
    OwnedSpawnAttributes() { m_failure = ::posix_spawnattr_init(&m_attributes); }
    ~OwnedSpawnAttributes() { ::posix_spawnattr_destroy(&m_attributes); }
    OwnedSpawnAttributes(const OwnedSpawnAttributes&) = delete;
    OwnedSpawnAttributes& operator=(const OwnedSpawnAttributes&) = delete;
    OwnedSpawnAttributes(OwnedSpawnAttributes&&) = delete;
    OwnedSpawnAttributes& operator=(OwnedSpawnAttributes&&) = delete;

    int freeSignals()
    {
        sigset_t none;
        sigset_t all;
        ::sigemptyset(&none);
        ::sigfillset(&all);
        if (m_failure == 0)
            m_failure = ::posix_spawnattr_setsigmask(&m_attributes, &none);
        if (m_failure == 0)
            m_failure = ::posix_spawnattr_setsigdefault(&m_attributes, &all);
        if (m_failure == 0)
            m_failure = ::posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
        return m_failure;
    }
    [[nodiscard]] const posix_spawnattr_t* get() const { return &m_attributes; }

private:
    posix_spawnattr_t m_attributes{};
    int m_failure = 0;
};

int spawn(pid_t* child, char** arguments, int standardOutput)
{
    OwnedFileActions actions;
    OwnedSpawnAttributes attributes;
    if (const int failure = actions.redirect(standardOutput))
        return failure;
    if (const int failure = attributes.freeSignals())
        return failure;
    return ::posix_spawn(child, *arguments, actions.get(), attributes.get(), arguments, environ);
}

} // namespace

int OwnedChildProcess::wait() noexcept
{
    const pid_t child = std::exchange(m_child, 0);
    int status = 0;
    pid_t ended = -1;
    do
        ended = child > 0 ? ::waitpid(child, &status, 0) : -1;
    while (child > 0 && ended < 0 && errno == EINTR);
    if (ended != child || child <= 0)
        return -1;
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

LaunchResult launch(const QByteArray& program, const QByteArrayList& arguments, int standardOutput)
{
    ArgumentVector words(program, arguments);

    pid_t child = 0;
    const int failure = spawn(&child, words.data(), standardOutput);
    return {failure, OwnedChildProcess(failure == 0 ? child : 0)};
}

} // namespace havrel::platform
