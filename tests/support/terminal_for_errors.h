// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <stdexcept>
#include <utility>

#include <pty.h>
#include <unistd.h>

namespace havrel::tests {

/// Makes standard error a terminal until the object goes. What is written must fit into the terminal's buffer (4096
/// bytes): nobody reads meanwhile.
class TerminalForErrors
{
public:
    explicit TerminalForErrors(unsigned short columns)
        : m_before(::dup(STDERR_FILENO))
    {
        struct winsize size = {};
        size.ws_col = columns;
        int terminal = -1;
        if (m_before < 0 || ::openpty(&m_master, &terminal, nullptr, nullptr, &size) != 0)
            throw std::runtime_error("no terminal");
        ::dup2(terminal, STDERR_FILENO);
        ::close(terminal);
    }
    ~TerminalForErrors()
    {
        restore();
        ::close(m_master);
    }
    TerminalForErrors(const TerminalForErrors&) = delete;
    TerminalForErrors& operator=(const TerminalForErrors&) = delete;
    TerminalForErrors(TerminalForErrors&&) = delete;
    TerminalForErrors& operator=(TerminalForErrors&&) = delete;

    /// Gives standard error back; answers all that was written to the terminal.
    QByteArray taken()
    {
        restore(); // the last other side closes, and reading ends
        QByteArray all;
        QByteArray buffer(4096, Qt::Uninitialized);
        for (ssize_t length = 0; (length = ::read(m_master, buffer.data(), 4096)) > 0;)
            all.append(buffer.constData(), length);
        return all;
    }

private:
    void restore()
    {
        if (m_before < 0)
            return;
        ::dup2(m_before, STDERR_FILENO);
        ::close(std::exchange(m_before, -1));
    }

    int m_before;
    int m_master = -1;
};

} // namespace havrel::tests
