// SPDX-License-Identifier: MIT
#include "platform/backtrace.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace havrel::platform {
namespace {

TEST(Backtrace, HoldsTheCallersOfTheCaller)
{
    const ReturnAddresses addresses = currentReturnAddresses();
    ASSERT_GE(addresses.size(), 2U);
    EXPECT_TRUE(symbolAt(addresses.front()));
}

TEST(Backtrace, NamesWhatLiesAtAnAddress)
{
    const auto location = symbolAt(reinterpret_cast<std::uintptr_t>(&std::strtol));
    ASSERT_TRUE(location);
    EXPECT_FALSE(location->imagePath.isEmpty());
    EXPECT_NE(location->imageBase, 0U);
    EXPECT_TRUE(location->symbolName.isEmpty() == (location->symbolAddress == 0));
}

TEST(Backtrace, KnowsNothingOfAddressesOutsideEveryImage)
{
    EXPECT_FALSE(symbolAt(1));
}

} // namespace
} // namespace havrel::platform
