// SPDX-License-Identifier: MIT
#include "components/component.h"

#include "messaging/protocols.h"
#include "tests/components/component_peer.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

using tests::answerOf;

class TestedComponent final : public Component
{
public:
    TestedComponent()
    {
        on("orderStatusWindowFront", [this](const XPCMessage&) { ++orders; });
        answerAlways("queryHoldTimeWithReply:", {7.0});
        answerAlways("queryBuildNumberWithReply:", {quint32{4711}}); // in place of what every component answers
    }

    int orders = 0;
};

TEST(Component, AnswersWhatEveryComponentDoes)
{
    TestedComponent component;

    EXPECT_EQ(tests::unhandled(component, protocols::componentServing()), QByteArrayList());
    EXPECT_EQ(answerOf(component, "barrierWithCompletion:"), QVariantList());
    EXPECT_EQ(answerOf(component, "queryComponentVersionWithReply:"), QVariantList{componentVersion()});
}

TEST(Component, HandlesWhatItHasAHandlerFor)
{
    TestedComponent component;

    component.received({"orderStatusWindowFront", {}});
    component.received({"orderStatusWindowFront", {}});

    EXPECT_EQ(component.orders, 2);
    EXPECT_EQ(answerOf(component, "queryHoldTimeWithReply:"), QVariantList{7.0});
    EXPECT_EQ(answerOf(component, "queryBuildNumberWithReply:"), QVariantList{4711U});
    EXPECT_FALSE(component.handles("removeAllObservers"));
    EXPECT_EQ(answerOf(component, "removeAllObservers"), std::nullopt);
}

TEST(Component, TakesQuestionsThatNobodyWantsAnswered)
{
    TestedComponent component;

    component.received({"queryHoldTimeWithReply:", {}});
    component.received({"didInstallComponent", {}});
}

TEST(Component, HasABuildNumberThatGrowsWithItsVersion)
{
    quint32 expected = 0;
    for (const QString& each : componentVersion().split(u'.'))
        expected = expected * 100 + each.toUInt();

    EXPECT_EQ(componentVersion().count(u'.'), 2);
    EXPECT_GT(componentBuildNumber(), 0U);
    EXPECT_EQ(componentBuildNumber(), expected);
}

} // namespace
} // namespace havrel
