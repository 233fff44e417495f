// SPDX-License-Identifier: MIT
#include "components/endpoint_registry.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

using namespace Qt::Literals::StringLiterals;

const QString kScheduler = u"com.havrel.scheduler"_s;
const QString kMonitor = u"com.havrel.monitor"_s;
const XPCEndpoint kHere{":1.7", "/com/havrel/endpoint/7"};
const XPCEndpoint kThere{":1.8", "/com/havrel/endpoint/8"};
constexpr EndpointRegistry::Client kFirst = 1;
constexpr EndpointRegistry::Client kSecond = 2;

TEST(EndpointRegistry, FindsWhatIsPublished)
{
    EndpointRegistry registry;
    registry.publish(kScheduler, kHere, kFirst);
    registry.publish(kMonitor, kThere, kFirst);

    EXPECT_EQ(registry.find(kScheduler), kHere);
    EXPECT_EQ(registry.find(kMonitor), kThere);
    EXPECT_EQ(registry.find(u"com.havrel"_s), std::nullopt);
    EXPECT_EQ(registry.find(QString()), std::nullopt);
}

TEST(EndpointRegistry, KeepsTheLatestOfAnIdentifier)
{
    EndpointRegistry registry;
    registry.publish(kScheduler, kHere, kFirst);
    registry.publish(kScheduler, kThere, kSecond);

    EXPECT_EQ(registry.find(kScheduler), kThere);
}

TEST(EndpointRegistry, GivesBackOnlyToThePublisher)
{
    EndpointRegistry registry;
    registry.publish(kScheduler, kHere, kFirst);

    EXPECT_FALSE(registry.redact(kScheduler, kSecond));
    EXPECT_EQ(registry.find(kScheduler), kHere);
    EXPECT_TRUE(registry.redact(kScheduler, kFirst));
    EXPECT_EQ(registry.find(kScheduler), std::nullopt);
    EXPECT_FALSE(registry.redact(kScheduler, kFirst)) << "there is nothing any more";
}

TEST(EndpointRegistry, TakesBackEverythingOfOneWhoHasGone)
{
    EndpointRegistry registry;
    registry.publish(kScheduler, kHere, kFirst);
    registry.publish(kMonitor, kHere, kFirst);
    registry.publish(u"com.havrel.other"_s, kThere, kSecond);
    registry.publish(u"com.havrel.taken"_s, kHere, kFirst);
    registry.publish(u"com.havrel.taken"_s, kThere, kSecond);

    EXPECT_EQ(registry.redactAll(kFirst), (QStringList{kMonitor, kScheduler}));
    EXPECT_EQ(registry.redactAll(kFirst), QStringList());
    EXPECT_EQ(registry.find(u"com.havrel.other"_s), kThere);
    EXPECT_EQ(registry.find(u"com.havrel.taken"_s), kThere);
}

} // namespace
} // namespace havrel
