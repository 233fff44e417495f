// SPDX-License-Identifier: MIT
#include "platform/detached_program.h"

#include "platform/file_contents.h"
#include "tests/support/temporary_tree.h"

#include <QStandardPaths>

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace havrel::platform {
namespace {

/// A shell that is started and heard through a named pipe.
class DetachedProgram : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(::mkfifo(m_pipe.constData(), 0600), 0); }

    /// What the shell, started with \p script, writes to the pipe "$1"; waits for it.
    [[nodiscard]] QByteArray told(const QByteArray& script, const QByteArray& argument = {}) const
    {
        const int failure =
            launchDetached(m_shell, {"-c", "exec > \"$1\"; " + script, "sh", m_pipe, argument}, m_folder);
        EXPECT_EQ(failure, 0);
        return failure == 0 ? readFile(m_pipe).bytes : QByteArray();
    }

    TemporaryTree m_tree;
    QByteArray m_shell = QStandardPaths::findExecutable(QStringLiteral("sh")).toUtf8();
    QByteArray m_pipe = m_tree.bytes("pipe");
    QByteArray m_folder;
};

TEST_F(DetachedProgram, GetsItsArgumentsAsBytes)
{
    EXPECT_EQ(told("printf %s \"$2\"", "bad\xff \n'\""), "bad\xff \n'\"");
}

TEST_F(DetachedProgram, IsNoChildAndHasASessionOfItsOwn)
{
    const QByteArray answer = told("cut -d' ' -f4,6 /proc/$$/stat"); // parent, session
    EXPECT_NE(answer.split(' ').value(0).toInt(), ::getpid());
    EXPECT_NE(answer.trimmed().split(' ').value(1).toInt(), ::getsid(0));
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST_F(DetachedProgram, HasNoBlockedOrIgnoredSignalsAndAnEmptyInput)
{
    sigset_t term;
    sigset_t before;
    ::sigemptyset(&term);
    ::sigaddset(&term, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &term, &before);
    const auto handlerBefore = ::signal(SIGUSR1, SIG_IGN);
    const QByteArray answer = told("grep -E 'Sig(Blk|Ign)' /proc/self/status; cat");
    ::signal(SIGUSR1, handlerBefore);
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    EXPECT_EQ(answer, "SigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n");
}

TEST_F(DetachedProgram, StartsInTheFolderThatItIsGiven)
{
    m_folder = m_tree.bytes(".");
    EXPECT_EQ(told("pwd -P").trimmed(), QByteArray::fromStdString(std::filesystem::canonical(m_tree.root())));
}

TEST_F(DetachedProgram, TellsWhyItCouldNotBeExecuted)
{
    m_tree.write("text", "");
    EXPECT_EQ(launchDetached(m_tree.bytes("none"), {}), ENOENT);
    EXPECT_EQ(launchDetached(m_tree.bytes("text"), {}), EACCES);
    EXPECT_EQ(launchDetached(m_shell, {}, m_tree.bytes("none")), ENOENT);
}

} // namespace
} // namespace havrel::platform
