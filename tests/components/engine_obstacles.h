// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/environment_value.h"
#include "tests/support/temporary_tree.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QProcess>

#include <csignal>
#include <optional>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace havrel::tests {

/// Holds the repository's lock: a pipe among its indexes, which nobody fills, keeps a check of it waiting.
class LockingProgram
{
public:
    LockingProgram(const TemporaryTree& tree, const QByteArray& keyFile)
    {
        m_pipe = tree.bytes("repository/index/") + QByteArray(64, 'a');
        if (::mkfifo(m_pipe.constData(), 0600) != 0)
            return;
        m_program.start(QStringLiteral("restic"),
                        {QStringLiteral("--repo"),
                         QString::fromUtf8(tree.bytes("repository")),
                         QStringLiteral("--password-file"),
                         QString::fromUtf8(keyFile),
                         QStringLiteral("check")});
        // It has begun to read the pipe, with the lock in its hands, when the other end can be opened.
        for (QElapsedTimer timer = started(); m_writeEnd < 0 && timer.elapsed() < 50'000;)
            if ((m_writeEnd = ::open(m_pipe.constData(), O_WRONLY | O_NONBLOCK | O_CLOEXEC)) < 0)
                m_program.waitForFinished(20);
    }
    ~LockingProgram()
    {
        if (m_program.processId() > 0)
            ::kill(static_cast<pid_t>(m_program.processId()), SIGINT); // so that it gives the lock back
        if (!m_program.waitForFinished())
            m_program.kill();
        m_program.waitForFinished();
        if (m_writeEnd >= 0)
            ::close(m_writeEnd);
        ::unlink(m_pipe.constData());
    }
    LockingProgram(const LockingProgram&) = delete;
    LockingProgram& operator=(const LockingProgram&) = delete;
    LockingProgram(LockingProgram&&) = delete;
    LockingProgram& operator=(LockingProgram&&) = delete;

    [[nodiscard]] bool holdsTheLock() const { return m_writeEnd >= 0; }

private:
    static QElapsedTimer started()
    {
        QElapsedTimer timer;
        timer.start();
        return timer;
    }

    QByteArray m_pipe;
    QProcess m_program;
    int m_writeEnd = -1;
};

/// A program of the engine's name that runs a script of the shell first.
class ScriptedProgram
{
public:
    ScriptedProgram(const TemporaryTree& tree, const QByteArray& script)
    {
        tree.add("bin/restic");
        tree.write("bin/restic", ("#!/bin/sh\n" + script).toStdString());
        ::chmod(tree.path("bin/restic").c_str(), 0755);
        m_path.emplace("PATH", tree.bytes("bin") + ':' + qgetenv("PATH"));
    }

private:
    std::optional<EnvironmentValue> m_path;
};

/// Bytes that cannot be compressed, the same each time.
inline QByteArray bytesWithoutPattern(qsizetype size)
{
    QByteArray noise;
    for (quint32 number = 1; noise.size() < size; number = number * 1664525 + 1013904223)
        noise += static_cast<char>(number >> 24U);
    return noise;
}

} // namespace havrel::tests
