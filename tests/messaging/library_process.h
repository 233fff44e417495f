// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <array>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace havrel::tests {

/// A process of its own that serves the library (tests/messaging/library_service.cpp). Ends with its owner.
class LibraryProcess
{
public:
    enum class As { Same, Nobody };

    /// Waits until it serves.
    /// \param trace a file for all its messages; null: none is wanted
    explicit LibraryProcess(const QByteArray& address, As user = As::Same, const char* trace = nullptr)
    {
        std::array<int, 2> told{};
        if (::pipe2(told.data(), O_CLOEXEC) != 0)
            throw std::runtime_error("no pipe");
        m_process = ::fork();
        if (m_process == 0)
            run(address, user, told[1], trace);
        ::close(told[1]);
        char byte = 0;
        const bool serves = ::read(told[0], &byte, 1) == 1;
        ::close(told[0]);
        if (!serves)
            throw std::runtime_error("the library does not start");
    }
    ~LibraryProcess() { kill(); }
    LibraryProcess(const LibraryProcess&) = delete;
    LibraryProcess& operator=(const LibraryProcess&) = delete;
    LibraryProcess(LibraryProcess&&) = delete;
    LibraryProcess& operator=(LibraryProcess&&) = delete;

    /// Has another process connect to the library and make a round trip. \return whether that succeeded
    [[nodiscard]] static bool reaches(const QByteArray& address, As user)
    {
        const pid_t process = ::fork();
        if (process == 0)
            become(user, address, "reach");
        int status = 0;
        ::waitpid(process, &status, 0);
        if (!WIFEXITED(status) || WEXITSTATUS(status) > 1)
            throw std::runtime_error("the caller does not start");
        return WEXITSTATUS(status) == 0;
    }

    void kill()
    {
        if (m_process <= 1)
            return;
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
        m_process = 0;
    }
    void stop() const
    {
        ::kill(m_process, SIGSTOP);
        ::waitpid(m_process, nullptr, WUNTRACED);
    }
    void resume() const { ::kill(m_process, SIGCONT); }

private:
    [[noreturn]] static void run(const QByteArray& address, As user, int told, const char* trace)
    {
        ::dup2(told, 1);
        if (trace != nullptr && (::setenv("HAVREL_TRACE_BUS", "1", 1) != 0 ||
                                 ::dup2(::open(trace, O_WRONLY | O_CREAT | O_CLOEXEC, 0600), 2) < 0))
            ::_exit(125);
        become(user, address, nullptr);
    }

    /// \param what "reach"; null: to serve
    [[noreturn]] static void become(As user, const QByteArray& address, const char* what)
    {
        constexpr uid_t kNobody = 65534;
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (user == As::Nobody && (::setegid(kNobody) != 0 || ::seteuid(kNobody) != 0))
            ::_exit(126);
        ::execl(HAVREL_LIBRARY_PROGRAM, HAVREL_LIBRARY_PROGRAM, address.constData(), what, nullptr);
        ::_exit(127);
    }

    pid_t m_process = 0;
};

} // namespace havrel::tests
