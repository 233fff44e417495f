// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayList>

#include <optional>
#include <utility>

#include <sys/types.h>

namespace havrel::platform {

/// A program that this process started. When the owner goes, it waits for the program to end, so that none is left
/// behind as a zombie.
///
/// Threads: one thread at a time.
class OwnedChildProcess
{
public:
    OwnedChildProcess() = default;
    explicit OwnedChildProcess(pid_t child) noexcept
        : m_child(child)
    {
    }
    ~OwnedChildProcess() { wait(); }
    OwnedChildProcess(OwnedChildProcess&& other) noexcept
        : m_child(std::exchange(other.m_child, 0))
    {
    }
    OwnedChildProcess& operator=(OwnedChildProcess&& other) noexcept
    {
        std::swap(m_child, other.m_child);
        return *this;
    }
    OwnedChildProcess(const OwnedChildProcess&) = delete;
    OwnedChildProcess& operator=(const OwnedChildProcess&) = delete;

    [[nodiscard]] bool isRunning() const noexcept { return m_child > 0; }
    /// Waits until the program has ended.
    ///
    /// \return its exit status, 128 + the number of the signal that ended it, or -1 when there is nothing to wait for.
    int wait() noexcept;
    /// Asks the program to end, as Ctrl-C does. \source kill(2), SIGINT
    void interrupt() const noexcept;
    /// Ends the program, which gets no time for anything. \source kill(2), SIGKILL
    void kill() const noexcept;

private:
    pid_t m_child = 0; // 0 when there is none
};

/// What became of an attempt to start a program.
struct LaunchResult
{
    int errnoValue = 0; ///< 0 when the program runs
    OwnedChildProcess child;
};

/// A program to start, and what it is given.
struct ProgramLaunch
{
    QByteArray program; ///< the path of an executable file; becomes the first of its words
    QByteArrayList arguments = {};
    int standardInput = -1;                         ///< a descriptor, which stays open here; -1: an empty input
    int standardOutput;                             ///< a descriptor, which stays open here
    int standardError = -1;                         ///< a descriptor, which stays open here; -1: this process's
    std::optional<QByteArrayList> environment = {}; ///< "NAME=value"; none: this process's
};

/// Starts a program. It gets no blocked or ignored signals, and no descriptor that is marked close-on-exec, as all of
/// this program's are. Returns when the program was executed or could not be.
///
/// \source posix_spawn(3)
///
/// Threads: any thread.
[[nodiscard]] LaunchResult launch(const ProgramLaunch& wanted);

/// As above, with an empty input, and this process's errors and environment.
///
/// Threads: any thread.
[[nodiscard]] LaunchResult launch(const QByteArray& program, const QByteArrayList& arguments, int standardOutput);

} // namespace havrel::platform
