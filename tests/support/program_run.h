// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayList>

#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <vector>

#include <fcntl.h>
#include <pty.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace havrel::tests {

/// How the program under test is run.
struct RunSettings
{
    QByteArray input = {};
    QByteArray workingFolder = {};   ///< empty: that of the tests
    bool asOrdinaryUser = false;     ///< when the tests are run by root
    bool onTerminal = false;         ///< output and errors go to a terminal, and arrive together as output
    QByteArray outputFile = {};      ///< where the output goes instead
    QByteArrayList environment = {}; ///< "NAME=value"
};

struct RunResult
{
    int status = -1; ///< 128 + the signal when one ended it
    QByteArray output;
    QByteArray errors;
};

/// Runs HAVREL_PROGRAM with arguments and names as bytes, which QProcess cannot, and waits for its end.
class ProgramRun
{
public:
    ProgramRun(const QByteArrayList& arguments, const RunSettings& settings)
        : m_arguments(arguments)
        , m_settings(settings)
        , m_program(::open(HAVREL_PROGRAM, O_RDONLY)) // before the user changes, who may not reach it
        , m_input(::memfd_create("input", 0))
        , m_output(settings.outputFile.isEmpty() ? ::memfd_create("output", 0)
                                                 : ::open(settings.outputFile.constData(), O_WRONLY))
        , m_errors(::memfd_create("errors", 0))
    {
        if (settings.onTerminal && ::openpty(&m_master, &m_terminal, nullptr, nullptr, nullptr) != 0)
            throw std::runtime_error("no terminal");
        const auto size = static_cast<std::size_t>(settings.input.size());
        if (m_program < 0 || ::write(m_input, settings.input.constData(), size) != settings.input.size())
            throw std::runtime_error("cannot prepare " HAVREL_PROGRAM);
        ::lseek(m_input, 0, SEEK_SET);
    }
    ~ProgramRun()
    {
        for (const int descriptor : {m_program, m_input, m_output, m_errors, m_master, m_terminal})
            if (descriptor >= 0)
                ::close(descriptor);
    }
    ProgramRun(const ProgramRun&) = delete;
    ProgramRun& operator=(const ProgramRun&) = delete;
    ProgramRun(ProgramRun&&) = delete;
    ProgramRun& operator=(ProgramRun&&) = delete;

    RunResult result()
    {
        const pid_t child = ::fork();
        if (child == 0)
            beTheProgram();
        RunResult result;
        if (m_terminal >= 0) {
            ::close(std::exchange(m_terminal, -1));
            result.output = everythingFrom(m_master); // until the program's end closes the other side
        }
        int status = 0;
        while (::waitpid(child, &status, 0) < 0)
            if (errno != EINTR)
                throw std::runtime_error("cannot wait for the program");
        result.status = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
        if (m_master < 0 && m_settings.outputFile.isEmpty())
            result.output = everythingFromStartOf(m_output);
        result.errors = everythingFromStartOf(m_errors);
        return result;
    }

private:
    static QByteArray everythingFrom(int descriptor)
    {
        QByteArray all;
        QByteArray buffer(65536, Qt::Uninitialized);
        for (ssize_t length = 0; (length = ::read(descriptor, buffer.data(), 65536)) > 0;)
            all.append(buffer.constData(), length);
        return all;
    }
    static QByteArray everythingFromStartOf(int descriptor)
    {
        ::lseek(descriptor, 0, SEEK_SET);
        return everythingFrom(descriptor);
    }

    [[noreturn]] void beTheProgram()
    {
        constexpr uid_t kNobody = 65534;
        ::dup2(m_input, 0);
        ::dup2(m_terminal >= 0 ? m_terminal : m_output, 1);
        ::dup2(m_terminal >= 0 ? m_terminal : m_errors, 2);
        if (!m_settings.workingFolder.isEmpty() && ::chdir(m_settings.workingFolder.constData()) != 0)
            ::_exit(125);
        const bool mustChange = m_settings.asOrdinaryUser && ::geteuid() == 0;
        if (mustChange && (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0))
            ::_exit(125);
        for (const QByteArray& each : m_settings.environment)
            ::putenv(const_cast<char*>(each.constData()));
        std::vector<char*> arguments{const_cast<char*>("havrel")};
        for (const QByteArray& each : m_arguments)
            arguments.push_back(const_cast<char*>(each.constData()));
        arguments.push_back(nullptr);
        ::fexecve(m_program, arguments.data(), environ);
        ::_exit(126);
    }

    const QByteArrayList& m_arguments;
    const RunSettings& m_settings;
    int m_program, m_input, m_output, m_errors;
    int m_master = -1;
    int m_terminal = -1;
};

inline RunResult run(const QByteArrayList& arguments, const RunSettings& settings = {})
{
    return ProgramRun(arguments, settings).result();
}

} // namespace havrel::tests
