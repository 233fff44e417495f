// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/temporary_tree.h"

#include <QByteArray>

#include <array>
#include <csignal>
#include <stdexcept>
#include <string>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace havrel::tests {

/// A message bus of the test's own, which starts services by the files that the test writes. Ends with its owner.
class PrivateBus
{
public:
    PrivateBus()
    {
        m_tree.add("services/");
        m_tree.write("bus.conf", configuration());
        start();
    }
    ~PrivateBus() { end(); }
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;
    PrivateBus(PrivateBus&&) = delete;
    PrivateBus& operator=(PrivateBus&&) = delete;

    [[nodiscard]] QByteArray address() const { return m_address; }

    /// Lets the bus start \p command for \p name. Before anything has asked for it.
    void addService(const std::string& name, const std::string& command) const
    {
        m_tree.write("services/" + name + ".service", "[D-BUS Service]\nName=" + name + "\nExec=" + command + "\n");
    }

    /// Lets other users connect, as no session's bus does.
    void letOthersIn() const { ::chmod(m_tree.path("").c_str(), 0711); }

    /// The same without the mark of this very bus, which one that is started again does not have.
    [[nodiscard]] QByteArray lastingAddress() const { return m_address.split(',').constFirst(); }

    /// Ends the bus at once, as a crash does.
    void end()
    {
        if (m_daemon <= 1)
            return;
        ::kill(m_daemon, SIGKILL);
        ::waitpid(m_daemon, nullptr, 0);
        m_daemon = 0;
    }
    /// Starts another bus at the same address, once this one has ended.
    void startAgain() { start(); }
    /// Lets it answer nobody, and go on.
    void stop() const { ::kill(m_daemon, SIGSTOP); }
    void resume() const { ::kill(m_daemon, SIGCONT); }

private:
    /// The limits are those of a session's bus.
    /// \source /usr/share/dbus-1/session.conf
    [[nodiscard]] std::string configuration() const
    {
        return "<busconfig><type>session</type><listen>unix:path=" + m_tree.path("bus") +
               "</listen><auth>EXTERNAL</auth><servicedir>" + m_tree.path("services") +
               "</servicedir><policy context='default'><allow user='*'/><allow send_destination='*' eavesdrop='true'/>"
               "<allow eavesdrop='true'/><allow own='*'/></policy>"
               "<limit name='max_incoming_bytes'>1000000000</limit><limit name='max_outgoing_bytes'>1000000000</limit>"
               "<limit name='max_message_size'>1000000000</limit><limit name='service_start_timeout'>120000</limit>"
               "<limit name='max_replies_per_connection'>50000</limit></busconfig>";
    }

    void start()
    {
        std::array<int, 2> told{};
        if (::pipe2(told.data(), O_CLOEXEC) != 0)
            throw std::runtime_error("no pipe");
        const std::string configurationFile = "--config-file=" + m_tree.path("bus.conf");
        const std::string errorsFile = m_tree.path("errors");
        m_daemon = ::fork();
        if (m_daemon == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL); // a test that is killed leaves no bus behind
            ::dup2(told[1], 1);
            ::dup2(::open(errorsFile.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600), 2);
            ::execlp("dbus-daemon",
                     "dbus-daemon",
                     "--nofork",
                     "--nopidfile",
                     "--nosyslog",
                     "--print-address=1",
                     configurationFile.c_str(),
                     nullptr);
            ::_exit(127);
        }
        ::close(told[1]);
        m_address = firstLineFrom(told[0]);
        ::close(told[0]);
        if (m_address.isEmpty())
            throw std::runtime_error("dbus-daemon does not start");
    }

    static QByteArray firstLineFrom(int descriptor)
    {
        QByteArray line;
        for (char byte = 0; ::read(descriptor, &byte, 1) == 1 && byte != '\n';)
            line += byte;
        return line;
    }

    TemporaryTree m_tree;
    pid_t m_daemon = 0;
    QByteArray m_address;
};

} // namespace havrel::tests
