// SPDX-License-Identifier: MIT
#include "app/request_queue.h"

#include <gtest/gtest.h>

namespace havrel::tests {
namespace {

using Arrival = havrel::RequestQueue::Arrival;

platform::BusRequest callOf(const char* member)
{
    return {{}, 0, {}, {.sender = ":1.1", .path = "/", .interface = "a.b", .member = member}, {}};
}

Arrival arriveAt(havrel::RequestQueue& queue, const char* name)
{
    platform::BusRequest call = callOf(name);
    return queue.arrive(call, {&ServiceRequests::revealInArchive, {{QStringLiteral("name"), name}}});
}

QByteArray beginAt(havrel::RequestQueue& queue)
{
    const auto next = queue.begin();
    return next ? next->pasteboard.value(QStringLiteral("name")) : "none";
}

TEST(RequestQueue, LetsRequestsBeginInTheirOrder)
{
    havrel::RequestQueue queue;
    EXPECT_EQ(beginAt(queue), "none");
    EXPECT_EQ(arriveAt(queue, "a"), Arrival::Accepted);
    EXPECT_EQ(arriveAt(queue, "b"), Arrival::Accepted);
    EXPECT_EQ(beginAt(queue), "a");
    EXPECT_EQ(arriveAt(queue, "c"), Arrival::Accepted);
    EXPECT_EQ(beginAt(queue), "b");
    EXPECT_EQ(beginAt(queue), "c");
    EXPECT_EQ(beginAt(queue), "none");
}

TEST(RequestQueue, ClosesOnlyWhenNoneWaits)
{
    havrel::RequestQueue queue;
    ASSERT_EQ(arriveAt(queue, "a"), Arrival::Accepted);
    EXPECT_FALSE(queue.closeUnlessSomeWait());
    EXPECT_EQ(arriveAt(queue, "b"), Arrival::Accepted); // it stays open
    EXPECT_EQ(beginAt(queue), "a");
    EXPECT_EQ(beginAt(queue), "b");
    EXPECT_TRUE(queue.closeUnlessSomeWait());
    EXPECT_EQ(arriveAt(queue, "c"), Arrival::Refused);
    EXPECT_TRUE(queue.closeUnlessSomeWait());
}

TEST(RequestQueue, KeepsCallsAndLetsNoneBeginUntilItIsClosed)
{
    havrel::RequestQueue queue;
    ASSERT_EQ(arriveAt(queue, "a"), Arrival::Accepted);
    queue.keep();
    EXPECT_EQ(beginAt(queue), "none");
    EXPECT_EQ(arriveAt(queue, "b"), Arrival::Kept);
    EXPECT_EQ(arriveAt(queue, "c"), Arrival::Kept);
    EXPECT_FALSE(queue.closeUnlessSomeWait());
    const havrel::RequestQueue::Rest rest = queue.close();
    ASSERT_EQ(rest.accepted.size(), 1U);
    EXPECT_EQ(rest.accepted.front().pasteboard.value(QStringLiteral("name")), "a");
    ASSERT_EQ(rest.kept.size(), 2U);
    EXPECT_EQ(rest.kept[0].origin().member, "b");
    EXPECT_EQ(rest.kept[1].origin().member, "c");
    EXPECT_EQ(arriveAt(queue, "d"), Arrival::Refused);
}

TEST(RequestQueue, StaysClosed)
{
    havrel::RequestQueue queue;
    ASSERT_TRUE(queue.closeUnlessSomeWait());
    queue.keep();
    EXPECT_EQ(arriveAt(queue, "a"), Arrival::Refused);
    const havrel::RequestQueue::Rest rest = queue.close();
    EXPECT_TRUE(rest.accepted.empty() && rest.kept.empty());
}

} // namespace
} // namespace havrel::tests
