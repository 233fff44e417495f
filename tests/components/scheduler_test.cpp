// SPDX-License-Identifier: MIT
#include "components/scheduler.h"

#include "messaging/carried_value.h"
#include "messaging/protocols.h"
#include "tests/components/component_peer.h"
#include "tests/support/recording_logr.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

using tests::answerOf;
using tests::Awaited;
using namespace Qt::StringLiterals;

/// One that is on hold, so that nothing is captured.
class ASchedulerOnHold : public ::testing::Test
{
protected:
    void SetUp() override { tell("setHoldTime:", {4e9}); }

    void tell(const QByteArray& keywordName, const QVariantList& values)
    {
        m_scheduler.received({keywordName, values});
    }
    void capture(const QByteArrayList& items, const QByteArray& archive)
    {
        tell("quickCapture:toRepository:", {QVariant(QVariantList(items.cbegin(), items.cend())), archive});
    }
    QVariantList actions() { return answerOf(m_scheduler, "queryActionsInfoWithReply:")->value(0).toList(); }

    TemporaryTree m_tree;
    std::shared_ptr<tests::RecordingLogr> m_logr = std::make_shared<tests::RecordingLogr>();
    tests::SharedLoggerScope m_sharedLogger{m_logr};
    Awaited<QByteArray> m_captured;
    std::shared_ptr<Scheduler> m_owned = std::make_shared<Scheduler>(
        m_tree.bytes("state"), [this](const QByteArray& archive, const QByteArrayList&, const EngineProgressBlock&) {
            m_captured.tell(archive);
            return CaptureSummary();
        });
    Scheduler& m_scheduler = *m_owned;
};

TEST_F(ASchedulerOnHold, HandlesEveryMessageOfItsProtocol)
{
    EXPECT_EQ(tests::unhandled(m_scheduler, protocols::scheduling()), QByteArrayList());
}

TEST_F(ASchedulerOnHold, AnswersWhatFitsItsProtocol)
{
    capture({"/one", QByteArray("/tw\xff")}, "/a.zephra");

    for (const ProtocolMessage& each : protocols::scheduling().messages()) {
        if (!each.answers || !each.takes.isEmpty())
            continue;
        const auto answer = answerOf(m_scheduler, each.keywordName);
        ASSERT_TRUE(answer.has_value()) << each.keywordName.constData();
        EXPECT_TRUE(carriedValues(*each.answers, *answer)) << each.keywordName.constData();
    }
}

TEST_F(ASchedulerOnHold, QueuesQuickCaptures)
{
    capture({"/one/", "/two/../three"}, "/a.zephra");

    const QVariantMap action = actions().value(0).toMap();
    EXPECT_EQ(action.value(u"archive"_s), QByteArray("/a.zephra"));
    EXPECT_EQ(action.value(u"items"_s), QVariant(QVariantList{QByteArray("/one"), QByteArray("/three")}));
    EXPECT_EQ(answerOf(m_scheduler, "queryNextScheduledActionInfoWithReply:")->value(0).toList().size(), 1);
    EXPECT_EQ(answerOf(m_scheduler, "queryHoldTimeWithReply:"), QVariantList{4e9});
    EXPECT_EQ(answerOf(m_scheduler, "queryVolatileInfoWithReply:")->value(0).toMap().value(u"queued"_s), 1);
    EXPECT_EQ(answerOf(m_scheduler, "queryRunSummariesWithReply:"), QVariantList{QVariantMap()});
}

TEST_F(ASchedulerOnHold, RefusesWhatCannotBeCaptured)
{
    capture({}, "/a.zephra");
    capture({"relative"}, "/a.zephra");
    capture({"/one", ""}, "/a.zephra");
    capture({QByteArray("/o\0ne", 5)}, "/a.zephra");
    capture({"/one"}, "a.zephra");

    EXPECT_EQ(actions(), QVariantList());
    EXPECT_EQ(m_logr->lines().filter(u"a capture without items"_s).size(), 5);
}

TEST_F(ASchedulerOnHold, KnowsActionsByTheirIdentifiersAndDictionaries)
{
    capture({"/one"}, "/1");
    capture({"/one"}, "/2");
    capture({"/one"}, "/3");
    tell("setAction:suspended:", {actions().value(0), true});
    tell("setAction:toExecuteAt:", {u"2"_s, 5e9});
    tell("setAction:suspended:", {17, true});
    tell("sabotageScheduleTime:", {4e9});

    EXPECT_EQ(m_captured.one(), "/3");
    tell("sabotageScheduleTime:", {5e9});
    EXPECT_EQ(m_captured.first(2).at(1), "/2");
}

TEST_F(ASchedulerOnHold, TellsEachConnectionWhichActionItHasAskedFor)
{
    SchedulerClient one(m_owned);
    SchedulerClient other(m_owned);
    const auto asked = [](SchedulerClient& client) {
        QVariant id;
        client.received({"queryVolatileInfoWithReply:", {}, [&id](const QVariantList& values) {
                             id = values.value(0).toMap().value(u"asked"_s);
                         }});
        return id;
    };
    const QVariantList same{QVariant(QVariantList{QByteArray("/one")}), QByteArray("/a.zephra")};

    EXPECT_EQ(asked(one), u""_s) << "nothing yet";
    one.received({"quickCapture:toRepository:", same});
    other.received({"quickCapture:toRepository:", same});
    EXPECT_EQ(asked(one), u"1"_s);
    EXPECT_EQ(asked(other), u"2"_s);
    one.received({"quickCapture:toRepository:", same});
    EXPECT_EQ(asked(one), u"3"_s) << "the latest";
    other.received({"quickCapture:toRepository:", {QVariant(QVariantList()), QByteArray("/a.zephra")}});
    EXPECT_EQ(asked(other), u""_s) << "refused";
    other.received({"setHoldTime:", {5e9}});
    EXPECT_EQ(m_scheduler.schedule().holdTime(), 5e9) << "everything else is the scheduler's";
}

TEST_F(ASchedulerOnHold, LaunchesNoServices)
{
    EXPECT_EQ(answerOf(m_scheduler, "launchMetadataService:forCommand:withReply:", {u"a"_s, u"b"_s}),
              QVariantList{QVariant(QVariantList())});
    EXPECT_EQ(answerOf(m_scheduler, "queryListenerForCommandIdentifier:withInfo:withReply:", {u"a"_s, QVariantMap()}),
              QVariantList{QVariant(QVariantList())});
}

TEST_F(ASchedulerOnHold, KeepsPreferences)
{
    const auto set = [this](const QVariantList& value) {
        return answerOf(m_scheduler, "setComponentPreferenceValue:forKey:withReply:", {QVariant(value), u"Colour"_s});
    };
    const auto get = [](Scheduler& scheduler) {
        return answerOf(scheduler, "queryComponentPreferenceForKey:withReply:", {u"Colour"_s})->value(0).toList();
    };

    EXPECT_EQ(get(m_scheduler), QVariantList());
    EXPECT_EQ(set({u"blue"_s}), QVariantList{true});
    EXPECT_EQ(set({QVariant::fromValue(nullptr), 1}), QVariantList{true});
    EXPECT_EQ(set({QVariant::fromValue(m_tree.path(""))}), QVariantList{false}) << "no value that can be kept";
    EXPECT_EQ(set({u"red"_s}), QVariantList{true});
    Scheduler next(m_tree.bytes("state"), {});
    EXPECT_EQ(get(next), QVariantList{u"red"_s});
    EXPECT_EQ(set({}), QVariantList{true});
    EXPECT_EQ(get(m_scheduler), QVariantList());
}

} // namespace
} // namespace havrel
