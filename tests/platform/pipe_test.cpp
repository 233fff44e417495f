// SPDX-License-Identifier: MIT
#include "platform/pipe.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

namespace havrel::platform {
namespace {

TEST(Pipe, CarriesBytesUntilItsWriteEndIsClosed)
{
    Pipe pipe = makePipe();
    ASSERT_EQ(::write(pipe.writeEnd.get(), "a\0b", 3), 3);

    EXPECT_EQ(readAvailable(pipe.readEnd.get()), QByteArray("a\0b", 3));
    pipe.writeEnd.reset();
    EXPECT_EQ(readAvailable(pipe.readEnd.get()), QByteArray());
}

TEST(Pipe, IsNotInherited)
{
    const Pipe pipe = makePipe();

    EXPECT_NE(::fcntl(pipe.readEnd.get(), F_GETFD) & FD_CLOEXEC, 0);
    EXPECT_NE(::fcntl(pipe.writeEnd.get(), F_GETFD) & FD_CLOEXEC, 0);
}

TEST(Pipe, ReadsNothingFromADescriptorThatIsNotOpen)
{
    EXPECT_EQ(readAvailable(-1), QByteArray());
}

} // namespace
} // namespace havrel::platform
