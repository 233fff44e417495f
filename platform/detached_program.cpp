// SPDX-License-Identifier: MIT
#include "platform/detached_program.h"

#include "platform/argument_vector.h"
#include "platform/pipe.h"

#include <cerrno>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace havrel::platform {
namespace {

/// Everything that the new process needs, made before the fork: behind it only calls that are safe in a child of a
/// process with threads are made.
struct Start
{
    const char* program;
    char* const* arguments;
    const char* folder; // null: leave it
    int failures;       // where an errno value is written
};

void freeSignals()
{
    for (int number = 1; number < NSIG; ++number)
        ::signal(number, SIG_DFL);
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

[[noreturn]] void giveUp(const Start& start)
{
    const int failure = errno;
    const ssize_t told = ::write(start.failures, &failure, sizeof failure);
    ::_exit(told < 0 ? 2 : 1);
}

[[noreturn]] void becomeProgram(const Start& start)
{
    freeSignals();
    const int input = ::open("/dev/null", O_RDONLY);
    if (input < 0 || ::dup2(input, STDIN_FILENO) < 0)
        giveUp(start);
    if (input != STDIN_FILENO)
        ::close(input);
    if (start.folder != nullptr && ::chdir(start.folder) != 0)
        giveUp(start);
    ::execv(start.program, start.arguments);
    giveUp(start);
}

/// In the child between: its own child has no parent to be waited for by once this one is gone.
[[noreturn]] void forkAgain(const Start& start)
{
    if (::setsid() < 0)
        giveUp(start);
    const pid_t program = ::fork();
    if (program < 0)
        giveUp(start);
    if (program == 0)
        becomeProgram(start);
    ::_exit(0);
}

int failureOf(Pipe& pipe, pid_t between)
{
    pipe.writeEnd.reset();
    while (::waitpid(between, nullptr, 0) < 0 && errno == EINTR) {
    }
    int failure = 0;
    const QByteArray told = readAvailable(pipe.readEnd.get()); // nothing once the program is executed
    if (told.size() == sizeof failure)
        std::memcpy(&failure, told.constData(), sizeof failure);
    return failure;
}

} // namespace

int launchDetached(const QByteArray& program, const QByteArrayList& arguments, const QByteArray& folder)
{
    ArgumentVector words(program, arguments);
    Pipe pipe = makePipe();
    if (!pipe.writeEnd.isOpen())
        return EMFILE;
    const Start start{
        program.constData(), words.data(), folder.isEmpty() ? nullptr : folder.constData(), pipe.writeEnd.get()};
    const pid_t between = ::fork();
    if (between < 0)
        return errno;
    if (between == 0)
        forkAgain(start);
    return failureOf(pipe, between);
}

} // namespace havrel::platform
