// SPDX-License-Identifier: MIT
#include "platform/termination_signals.h"

#include "tests/support/forked_child.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>

namespace havrel::platform {
namespace {

TEST(TerminationSignals, CanBeReadInsteadOfEndingTheProcess)
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        EXPECT_EQ(resultInForkedChild([signal] {
                      TerminationSignals signals;
                      if (signals.take() != 0)
                          return 1;
                      ::raise(signal);
                      pollfd readable{signals.descriptor(), POLLIN, 0};
                      if (::poll(&readable, 1, 0) != 1)
                          return 2;
                      return signals.take() == signal && signals.take() == 0 ? 0 : 3;
                  }),
                  0)
            << signal;
}

TEST(TerminationSignals, EndTheProcessAgainAfterwards)
{
    EXPECT_EQ(resultInForkedChild([] {
                  {
                      const TerminationSignals signals;
                  }
                  ::raise(SIGTERM);
                  return 0;
              }),
              128 + SIGTERM);
}

TEST(TerminationSignals, DoNotReachProgramsAsOpenDescriptors)
{
    const TerminationSignals signals;
    EXPECT_NE(::fcntl(signals.descriptor(), F_GETFD) & FD_CLOEXEC, 0);
}

} // namespace
} // namespace havrel::platform
