// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <array>
#include <csignal>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <grp.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace havrel::tests {

/// A component in a process of its own, which does what it is told (tests/support/bus_peer.cpp). Ends with its owner.
class BusPeer
{
public:
    enum class As { Same, Nobody };

    /// \param bus "session" or "system". \param switchboard its service's name. \param user Nobody: only root can
    BusPeer(const QByteArray& address, const char* bus, const QByteArray& switchboard, As user = As::Same)
        : m_program(::open(HAVREL_BUS_PEER, O_RDONLY | O_CLOEXEC)) // before the user changes, who may not reach it
    {
        std::array<int, 2> commands{};
        std::array<int, 2> answers{};
        if (m_program < 0 || ::pipe2(commands.data(), O_CLOEXEC) != 0 || ::pipe2(answers.data(), O_CLOEXEC) != 0)
            throw std::runtime_error("cannot prepare " HAVREL_BUS_PEER);
        m_process = ::fork();
        if (m_process == 0) {
            ::dup2(commands[0], 0);
            ::dup2(answers[1], 1);
            run({const_cast<char*>("bus_peer"),
                 const_cast<char*>(address.constData()),
                 const_cast<char*>(bus),
                 const_cast<char*>(switchboard.constData()),
                 nullptr},
                user);
        }
        ::close(commands[0]);
        ::close(answers[1]);
        m_commands = commands[1];
        m_answers = answers[0];
    }
    ~BusPeer()
    {
        kill();
        for (const int each : {m_program, m_commands, m_answers})
            ::close(each);
    }
    BusPeer(const BusPeer&) = delete;
    BusPeer& operator=(const BusPeer&) = delete;
    BusPeer(BusPeer&&) = delete;
    BusPeer& operator=(BusPeer&&) = delete;

    /// \return what it answers to \p command; empty when it has gone
    QByteArray answerTo(const QByteArray& command)
    {
        tell(command);
        return nextAnswer();
    }
    void tell(const QByteArray& command) const
    {
        const QByteArray line = command + '\n';
        if (::write(m_commands, line.constData(), static_cast<std::size_t>(line.size())) != line.size())
            throw std::runtime_error("the component does not listen");
    }
    [[nodiscard]] QByteArray nextAnswer() const
    {
        QByteArray line;
        for (char byte = 0; ::read(m_answers, &byte, 1) == 1 && byte != '\n';)
            line += byte;
        return line;
    }

    void stop() const
    {
        ::kill(m_process, SIGSTOP);
        ::waitpid(m_process, nullptr, WUNTRACED);
    }
    void resume() const { ::kill(m_process, SIGCONT); }
    void kill()
    {
        const pid_t process = std::exchange(m_process, 0);
        if (process <= 1)
            return;
        ::kill(process, SIGKILL);
        ::waitpid(process, nullptr, 0);
    }

private:
    [[noreturn]] void run(std::array<char*, 5> arguments, As user) const
    {
        constexpr uid_t kNobody = 65534;
        const bool changes = user == As::Nobody;
        if (changes && (::setgroups(0, nullptr) != 0 || ::setgid(kNobody) != 0 || ::setuid(kNobody) != 0))
            ::_exit(126);
        ::prctl(PR_SET_PDEATHSIG, SIGKILL); // a change of the user takes it back
        ::fexecve(m_program, arguments.data(), environ);
        ::_exit(127);
    }

    int m_program;
    int m_commands = -1;
    int m_answers = -1;
    pid_t m_process = 0;
};

} // namespace havrel::tests
