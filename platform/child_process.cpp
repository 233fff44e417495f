// SPDX-License-Identifier: MIT
#include "platform/child_process.h"

#include "platform/argument_vector.h"
#include "platform/owned_descriptor.h"

#include <cerrno>
#include <csignal>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace havrel::platform {
namespace {

/// A descriptor that may be handed to a child under another number, whatever its own is: one of the first three could
/// be replaced before it is its turn.
class HandedDescriptor
{
public:
    explicit HandedDescriptor(int descriptor)
        : m_copy(descriptor >= 0 && descriptor <= STDERR_FILENO
                     ? ::fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)
                     : -1)
        , m_descriptor(m_copy.isOpen() ? m_copy.get() : descriptor)
    {
    }
    [[nodiscard]] int get() const noexcept { return m_descriptor; }

private:
    OwnedDescriptor m_copy;
    int m_descriptor;
};

class OwnedFileActions
{
public:
    OwnedFileActions() { m_failure = ::posix_spawn_file_actions_init(&m_actions); }
    ~OwnedFileActions() { ::posix_spawn_file_actions_destroy(&m_actions); }
    OwnedFileActions(const OwnedFileActions&) = delete;
    OwnedFileActions& operator=(const OwnedFileActions&) = delete;
    OwnedFileActions(OwnedFileActions&&) = delete;
    OwnedFileActions& operator=(OwnedFileActions&&) = delete;

    int redirect(int standardInput, int standardOutput, int standardError)
    {
        if (standardInput >= 0)
            hand(standardInput, STDIN_FILENO);
        else if (m_failure == 0)
            m_failure = ::posix_spawn_file_actions_addopen(&m_actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        hand(standardOutput, STDOUT_FILENO);
        if (standardError >= 0)
            hand(standardError, STDERR_FILENO);
        return m_failure;
    }
    [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &m_actions; }

private:
    void hand(int descriptor, int as)
    {
        if (m_failure == 0)
            m_failure = ::posix_spawn_file_actions_adddup2(&m_actions, descriptor, as);
    }

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

int spawn(pid_t* child, char** arguments, char** environment, const ProgramLaunch& wanted)
{
    const HandedDescriptor input(wanted.standardInput);
    const HandedDescriptor output(wanted.standardOutput);
    const HandedDescriptor errors(wanted.standardError);
    OwnedFileActions actions;
    OwnedSpawnAttributes attributes;
    if (const int failure = actions.redirect(input.get(), output.get(), errors.get()))
        return failure;
    if (const int failure = attributes.freeSignals())
        return failure;
    return ::posix_spawn(child, *arguments, actions.get(), attributes.get(), arguments, environment);
}

/// The words as a call wants them, ended by a null pointer. They must outlive the result.
std::vector<char*> pointersTo(QByteArrayList& words)
{
    std::vector<char*> pointers;
    for (QByteArray& each : words)
        pointers.push_back(each.data());
    pointers.push_back(nullptr);
    return pointers;
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

void OwnedChildProcess::interrupt() const noexcept
{
    if (m_child > 0)
        ::kill(m_child, SIGINT);
}

void OwnedChildProcess::kill() const noexcept
{
    if (m_child > 0)
        ::kill(m_child, SIGKILL);
}

LaunchResult launch(const ProgramLaunch& wanted)
{
    ArgumentVector words(wanted.program, wanted.arguments);
    QByteArrayList variables = wanted.environment.value_or(QByteArrayList());
    std::vector<char*> environment = pointersTo(variables);

    pid_t child = 0;
    const int failure = spawn(&child, words.data(), wanted.environment ? environment.data() : environ, wanted);
    return {failure, OwnedChildProcess(failure == 0 ? child : 0)};
}

LaunchResult launch(const QByteArray& program, const QByteArrayList& arguments, int standardOutput)
{
    return launch({.program = program, .arguments = arguments, .standardOutput = standardOutput});
}

} // namespace havrel::platform
