// SPDX-License-Identifier: MIT
#include "platform/child_process.h"

#include "platform/pipe.h"
#include "tests/support/temporary_tree.h"

#include <QStandardPaths>

#include <gtest/gtest.h>

#include <csignal>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>

namespace havrel::platform {
namespace {

QByteArray shell()
{
    return QStandardPaths::findExecutable(QStringLiteral("sh")).toUtf8();
}

QByteArray everythingFrom(const OwnedDescriptor& readEnd)
{
    QByteArray all;
    for (QByteArray chunk = readAvailable(readEnd.get()); !chunk.isEmpty(); chunk = readAvailable(readEnd.get()))
        all += chunk;
    return all;
}

struct Outcome
{
    int errnoValue;
    QByteArray output;
    int status;
};

Outcome outcomeOf(const QByteArray& program, const QByteArrayList& arguments)
{
    Pipe pipe = makePipe();
    LaunchResult launched = launch(program, arguments, pipe.writeEnd.get());
    pipe.writeEnd.reset();
    const QByteArray output = everythingFrom(pipe.readEnd);
    return {launched.errnoValue, output, launched.child.wait()};
}

TEST(ChildProcess, WritesItsStandardOutputToTheGivenDescriptor)
{
    const Outcome outcome = outcomeOf(shell(), {"-c", "echo \"$0 $1\"", "one word", "two\nlines"});

    EXPECT_EQ(outcome.errnoValue, 0);
    EXPECT_EQ(outcome.output, "one word two\nlines\n");
    EXPECT_EQ(outcome.status, 0);
}

TEST(ChildProcess, TellsHowItEnded)
{
    EXPECT_EQ(outcomeOf(shell(), {"-c", "exit 3"}).status, 3);
    EXPECT_EQ(outcomeOf(shell(), {"-c", "kill -KILL $$"}).status, 128 + SIGKILL);
}

TEST(ChildProcess, ReadsNothingFromItsStandardInput)
{
    EXPECT_EQ(outcomeOf(shell(), {"-c", "read line; echo $?"}).output, "1\n");
}

TEST(ChildProcess, AnswersTheErrorOfAProgramThatCannotBeRun)
{
    const TemporaryTree tree{"plain.txt"};

    EXPECT_EQ(outcomeOf(tree.path("missing").c_str(), {}).errnoValue, ENOENT);
    EXPECT_EQ(outcomeOf(tree.path("plain.txt").c_str(), {}).errnoValue, EACCES);
    EXPECT_EQ(outcomeOf(tree.path("missing").c_str(), {}).status, -1);
    EXPECT_EQ(outcomeOf({}, {}).errnoValue, ENOENT);
}

TEST(ChildProcess, InheritsNoOtherDescriptorOfThisProgram)
{
    // Whoever ran the tests may have left descriptors open; only what is added here is asked for.
    const Pipe another = makePipe();
    const QByteArray number = QByteArray::number(another.writeEnd.get());

    EXPECT_EQ(outcomeOf(shell(), {"-c", "test -e /proc/self/fd/" + number + " && echo open || echo closed"}).output,
              "closed\n");
}

TEST(ChildProcess, IsFreeOfThisProcessesIgnoredAndBlockedSignals)
{
    struct sigaction before
    {
    };
    struct sigaction ignore
    {
    };
    ignore.sa_handler = SIG_IGN;
    ASSERT_EQ(::sigaction(SIGPIPE, &ignore, &before), 0);
    sigset_t usr1;
    sigset_t unblocked;
    ::sigemptyset(&usr1);
    ::sigaddset(&usr1, SIGUSR1);
    ASSERT_EQ(::pthread_sigmask(SIG_BLOCK, &usr1, &unblocked), 0);

    EXPECT_EQ(outcomeOf(shell(), {"-c", "kill -PIPE $$"}).status, 128 + SIGPIPE);
    EXPECT_EQ(outcomeOf(shell(), {"-c", "kill -USR1 $$"}).status, 128 + SIGUSR1);

    ::sigaction(SIGPIPE, &before, nullptr);
    ::pthread_sigmask(SIG_SETMASK, &unblocked, nullptr);
}

TEST(ChildProcess, WritesToTheStandardOutputThatIsAlreadyTheRightDescriptor)
{
    const TemporaryTree tree{"output"};
    const OwnedDescriptor kept(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 10));
    const OwnedDescriptor file(::open(tree.path("output").c_str(), O_RDWR | O_CLOEXEC));
    ASSERT_EQ(::dup3(file.get(), STDOUT_FILENO, O_CLOEXEC), STDOUT_FILENO);
    LaunchResult launched = launch(shell(), {"-c", "echo here"}, STDOUT_FILENO);
    const int status = launched.child.wait();
    ASSERT_EQ(::dup2(kept.get(), STDOUT_FILENO), STDOUT_FILENO);

    EXPECT_EQ(launched.errnoValue, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(readAvailable(file.get()), "") << "the offset is shared and stands at the end";
    ASSERT_EQ(::lseek(file.get(), 0, SEEK_SET), 0);
    EXPECT_EQ(readAvailable(file.get()), "here\n");
}

TEST(ChildProcess, LeavesNoZombieWhenItsOwnerGoes)
{
    Pipe pipe = makePipe();
    {
        LaunchResult launched = launch(shell(), {"-c", "echo $$"}, pipe.writeEnd.get());
        ASSERT_TRUE(launched.child.isRunning());
    }
    const int child = readAvailable(pipe.readEnd.get()).trimmed().toInt();

    ASSERT_GT(child, 1);
    EXPECT_EQ(::waitpid(child, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST(ChildProcess, IsWaitedForOnce)
{
    Pipe pipe = makePipe();
    LaunchResult launched = launch(shell(), {"-c", "exit 4"}, pipe.writeEnd.get());

    EXPECT_EQ(launched.child.wait(), 4);
    EXPECT_FALSE(launched.child.isRunning());
    EXPECT_EQ(launched.child.wait(), -1);
    EXPECT_EQ(OwnedChildProcess().wait(), -1);
}

TEST(ChildProcess, MovesToAnotherOwner)
{
    Pipe pipe = makePipe();
    LaunchResult launched = launch(shell(), {"-c", "exit 5"}, pipe.writeEnd.get());
    OwnedChildProcess owner(std::move(launched.child));

    EXPECT_EQ(owner.wait(), 5);
}

} // namespace
} // namespace havrel::platform
