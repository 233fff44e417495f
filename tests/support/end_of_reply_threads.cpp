// SPDX-License-Identifier: MIT
// Part of every test program whose tests use connections: what still runs of them when the last test has ended must not
// meet what the process destroys, as at the end of the programs themselves.
#include "messaging/reply_threads.h"

#include <gtest/gtest.h>

#include <memory>

namespace havrel::tests {
namespace {

class EndOfReplyThreads : public ::testing::EmptyTestEventListener
{
    void OnTestProgramEnd(const ::testing::UnitTest& /*all*/) override { ReplyThreads::shared().leave(); }
};

const bool s_listens = [] {
    ::testing::UnitTest::GetInstance()->listeners().Append(std::make_unique<EndOfReplyThreads>().release());
    return true;
}();

} // namespace
} // namespace havrel::tests
