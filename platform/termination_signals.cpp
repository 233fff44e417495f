// SPDX-License-Identifier: MIT
#include "platform/termination_signals.h"

#include <sys/signalfd.h>

namespace havrel::platform {
namespace {

sigset_t endingSignals()
{
    sigset_t signals;
    ::sigemptyset(&signals);
    for (const int each : {SIGTERM, SIGINT, SIGHUP})
        ::sigaddset(&signals, each);
    return signals;
}

} // namespace

TerminationSignals::TerminationSignals()
{
    const sigset_t signals = endingSignals();
    m_descriptor = OwnedDescriptor(::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
    if (m_descriptor.isOpen())
        ::pthread_sigmask(SIG_BLOCK, &signals, &m_before);
    else
        ::pthread_sigmask(SIG_BLOCK, nullptr, &m_before);
}

TerminationSignals::~TerminationSignals()
{
    ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

int TerminationSignals::take() noexcept
{
    signalfd_siginfo signal{};
    const ssize_t length = ::read(m_descriptor.get(), &signal, sizeof signal);
    return length == sizeof signal ? static_cast<int>(signal.ssi_signo) : 0;
}

} // namespace havrel::platform
