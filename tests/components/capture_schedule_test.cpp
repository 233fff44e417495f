// SPDX-License-Identifier: MIT
#include "components/capture_schedule.h"

#include "components/engine_fault.h"
#include "diagnostics/exception.h"
#include "tests/support/awaited.h"
#include "tests/support/recording_logr.h"
#include "tests/support/stopped_clock.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <thread>

namespace havrel {
namespace {

using tests::Awaited;
using namespace Qt::StringLiterals;

/// An engine that does what the test tells it, when the test tells it.
class FakeEngine
{
public:
    struct Call
    {
        QByteArray archive;
        QByteArrayList items;
        EngineProgressBlock progress;
    };

    CaptureSchedule::Runner runner()
    {
        return [this](const QByteArray& archive, const QByteArrayList& items, const EngineProgressBlock& progress) {
            begun.tell({archive, items, progress});
            const std::size_t number = ++m_count;
            const std::vector<std::function<CaptureSummary()>> all = m_ends.first(number);
            return all.size() < number ? CaptureSummary() : all[number - 1]();
        };
    }
    /// Lets one capture end.
    void end(std::function<CaptureSummary()> how = [] { return CaptureSummary(); }) { m_ends.tell(std::move(how)); }

    Awaited<Call> begun;

private:
    std::size_t m_count = 0;
    Awaited<std::function<CaptureSummary()>> m_ends;
};

class ACaptureSchedule : public ::testing::Test
{
protected:
    std::unique_ptr<CaptureSchedule> schedule()
    {
        return std::make_unique<CaptureSchedule>(
            m_file, m_engine.runner(), [this](QLatin1StringView notice, const QVariantMap& info) {
                m_told.tell({notice, info});
            });
    }
    /// Until as many runs are in the log.
    static QVariantMap runs(const CaptureSchedule& schedule, qsizetype count)
    {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (schedule.runSummaries().size() < count && std::chrono::steady_clock::now() < deadline)
            std::this_thread::yield();
        return schedule.runSummaries();
    }
    static QStringList ids(const QVariantList& actions)
    {
        QStringList result;
        for (const QVariant& each : actions)
            result << each.toMap().value(u"id"_s).toString();
        return result;
    }

    TemporaryTree m_tree;
    QByteArray m_file = m_tree.bytes("state/schedule.plist");
    StoppedClock m_clock{u"2026-01-01T00:00:00.000Z"_s};
    const double m_now = 788918400; // that moment
    std::shared_ptr<tests::RecordingLogr> m_logr = std::make_shared<tests::RecordingLogr>();
    tests::SharedLoggerScope m_sharedLogger{m_logr};
    FakeEngine m_engine;
    Awaited<std::pair<QString, QVariantMap>> m_told;
};

TEST_F(ACaptureSchedule, DoesNothingByItself)
{
    const auto schedule = this->schedule();

    EXPECT_EQ(schedule->actions(), QVariantList());
    EXPECT_EQ(schedule->nextAction(), QVariantList());
    EXPECT_EQ(schedule->runSummaries(), QVariantMap());
    EXPECT_EQ(schedule->volatileInfo(),
              (QVariantMap{{u"queued"_s, 0LL}, {u"holdTime"_s, 0.0}, {u"clockAhead"_s, 0.0}}));
}

TEST_F(ACaptureSchedule, MakesOneCaptureAfterTheOther)
{
    const auto schedule = this->schedule();

    schedule->add("/a.zephra", {"/one", "/two"});
    schedule->add("/b.zephra", {"/three"});
    const auto first = m_engine.begun.one();

    ASSERT_TRUE(first);
    EXPECT_EQ(first->archive, "/a.zephra");
    EXPECT_EQ(first->items, (QByteArrayList{"/one", "/two"}));
    EXPECT_EQ(ids(schedule->actions()), (QStringList{u"1"_s, u"2"_s}));
    EXPECT_EQ(ids(schedule->nextAction()), QStringList{u"2"_s});
    m_engine.end();
    EXPECT_EQ(m_engine.begun.first(2).at(1).archive, "/b.zephra");
    m_engine.end();
    EXPECT_EQ(runs(*schedule, 2).keys(), (QStringList{u"1"_s, u"2"_s}));
    EXPECT_EQ(schedule->actions(), QVariantList());
}

TEST_F(ACaptureSchedule, TellsHowFarACaptureIs)
{
    const auto schedule = this->schedule();
    schedule->add("/a.zephra", {"/one"});
    const auto call = m_engine.begun.one();
    ASSERT_TRUE(call);

    EXPECT_EQ(
        call->progress({.fraction = 0.5, .files = 8, .filesDone = 4, .bytes = 80, .bytesDone = 40, .current = {}}),
        platform::Proceed::Yes);

    const QVariantMap info = schedule->volatileInfo();
    EXPECT_EQ(info.value(u"fraction"_s), 0.5);
    EXPECT_EQ(info.value(u"filesDone"_s), 4);
    EXPECT_EQ(info.value(u"bytes"_s), 80);
    EXPECT_EQ(info.value(u"started"_s), m_now);
    EXPECT_EQ(info.value(u"running"_s).toMap().value(u"archive"_s), QByteArray("/a.zephra"));
    m_engine.end();
}

TEST_F(ACaptureSchedule, WritesDownHowItWent)
{
    const auto schedule = this->schedule();
    for (const char* each : {"/1.zephra", "/2.zephra", "/3.zephra"})
        schedule->add(each, {"/one"});

    m_engine.end([] { return CaptureSummary{.capture = u"c"_s, .filesNew = 3, .bytesAdded = 9, .problems = {}}; });
    m_engine.end([] { return CaptureSummary{.capture = u"c"_s, .problems = {{u"/one/x"_s, u"gone"_s}}}; });
    m_engine.end([]() -> CaptureSummary { raiseFault(EngineFault::Locked, {"words"}, "/place"); });

    const QVariantMap all = runs(*schedule, 3);
    const QVariantMap done = all.value(u"1"_s).toMap();
    EXPECT_EQ(done.value(u"outcome"_s), u"done"_s);
    EXPECT_EQ(done.value(u"filesNew"_s), 3);
    EXPECT_EQ(done.value(u"bytesAdded"_s), 9);
    EXPECT_EQ(done.value(u"ended"_s), m_now);
    const QVariantMap partly = all.value(u"2"_s).toMap();
    EXPECT_EQ(partly.value(u"outcome"_s), u"problems"_s);
    EXPECT_EQ(partly.value(u"problems"_s),
              QVariant(QVariantList{QVariantMap{{u"item"_s, u"/one/x"_s}, {u"reason"_s, u"gone"_s}}}));
    const QVariantMap failed = all.value(u"3"_s).toMap();
    EXPECT_EQ(failed.value(u"outcome"_s), u"failed"_s);
    EXPECT_EQ(failed.value(u"fault"_s), wordOf(EngineFault::Locked));
    EXPECT_EQ(failed.value(u"reason"_s), sentenceOf(EngineFault::Locked));
    EXPECT_EQ(failed.value(u"words"_s), u"words"_s);
}

TEST_F(ACaptureSchedule, SurvivesARestart)
{
    {
        const auto schedule = this->schedule();
        schedule->add("/a.zephra", {"/one"});
        m_engine.end();
        EXPECT_EQ(runs(*schedule, 1).size(), 1);
        schedule->setHoldTime(m_now + 60);
        schedule->add("/b.zephra", {QByteArray("/two\xff")});
        schedule->setSuspended(u"2"_s, true);
    }
    const auto schedule = this->schedule();

    EXPECT_EQ(schedule->holdTime(), m_now + 60);
    EXPECT_EQ(schedule->runSummaries().keys(), QStringList{u"1"_s});
    const QVariantMap kept = schedule->actions().value(0).toMap();
    EXPECT_EQ(kept.value(u"items"_s), QVariant(QVariantList{QByteArray("/two\xff")}));
    EXPECT_EQ(kept.value(u"suspended"_s), true);
    schedule->add("/c.zephra", {"/three"});
    EXPECT_EQ(ids(schedule->actions()), (QStringList{u"2"_s, u"3"_s}));
}

TEST_F(ACaptureSchedule, MakesACaptureAgainThatItHadToStop)
{
    {
        const auto schedule = this->schedule();
        schedule->add("/a.zephra", {"/one"});
        const auto call = m_engine.begun.one();
        ASSERT_TRUE(call);
        m_engine.end([progress = call->progress]() -> CaptureSummary {
            while (progress({}) == platform::Proceed::Yes)
                std::this_thread::yield();
            raiseFault(EngineFault::Stopped, {}, "/place");
        });
    }
    const auto schedule = this->schedule();
    m_engine.end();

    EXPECT_EQ(m_engine.begun.first(2).size(), 2U);
    EXPECT_EQ(runs(*schedule, 1).value(u"1"_s).toMap().value(u"outcome"_s), u"done"_s);
}

TEST_F(ACaptureSchedule, BeginsNothingAnyMoreOnceItIsStopped)
{
    const auto schedule = this->schedule();
    schedule->stop();
    schedule->add("/a.zephra", {"/one"});
    schedule->stop();

    EXPECT_EQ(schedule->actions().size(), 1);
    EXPECT_EQ(m_engine.begun.count(), 0U);
}

TEST_F(ACaptureSchedule, TellsHowFarAnActionIsAndThatItHasEnded)
{
    const auto schedule = this->schedule();
    const QString id = schedule->add("/a.zephra", {"/one"});
    const auto call = m_engine.begun.one();
    ASSERT_TRUE(call);
    (void)call->progress({.fraction = 0.25, .files = 8, .filesDone = 2, .bytes = 80, .bytesDone = 20, .current = {}});
    m_engine.end();

    const auto told = m_told.first(2);
    ASSERT_EQ(told.size(), 2U);
    EXPECT_EQ(told[0].first, u"SchedulerActionProgressed"_s);
    EXPECT_EQ(told[0].second,
              (QVariantMap{{u"id"_s, id},
                           {u"fraction"_s, 0.25},
                           {u"files"_s, 8LL},
                           {u"filesDone"_s, 2LL},
                           {u"bytes"_s, 80LL},
                           {u"bytesDone"_s, 20LL}}));
    EXPECT_EQ(told[1].first, u"SchedulerActionEnded"_s);
    EXPECT_EQ(told[1].second, (QVariantMap{{u"id"_s, id}}));
    EXPECT_TRUE(schedule->runSummaries().contains(id)) << "who is told of the end finds the summary";
}

TEST_F(ACaptureSchedule, MakesACaptureAgainWhoseEngineWasMadeToStop)
{
    const auto stopped = []() -> CaptureSummary { raiseFault(EngineFault::Stopped, {}, "/place"); };
    const auto schedule = this->schedule();
    schedule->add("/a.zephra", {"/one"});
    m_engine.end(stopped);
    m_engine.end(stopped);
    m_engine.end();

    EXPECT_EQ(runs(*schedule, 1).value(u"1"_s).toMap().value(u"outcome"_s), u"done"_s);
    EXPECT_EQ(m_engine.begun.count(), 3U);
    EXPECT_EQ(m_told.first(1).size(), 1U) << "only the end of the action is told";

    schedule->add("/b.zephra", {"/one"});
    for (int i = 0; i < 3; ++i)
        m_engine.end(stopped);
    EXPECT_EQ(runs(*schedule, 2).value(u"2"_s).toMap().value(u"fault"_s), u"stopped"_s) << "but not for ever";
}

TEST_F(ACaptureSchedule, KeepsTheFirstThousandProblemsOfARun)
{
    const auto schedule = this->schedule();
    schedule->add("/a.zephra", {"/one"});
    m_engine.end([] {
        CaptureSummary summary;
        for (int i = 0; i < 1001; ++i)
            summary.problems.append({QString::number(i), u"gone"_s});
        return summary;
    });

    const QVariantMap run = runs(*schedule, 1).value(u"1"_s).toMap();
    EXPECT_EQ(run.value(u"problemCount"_s), 1001);
    EXPECT_EQ(run.value(u"problems"_s).toList().size(), 1000);
    EXPECT_EQ(run.value(u"problems"_s).toList().constLast().toMap().value(u"item"_s), u"999"_s);
}

TEST_F(ACaptureSchedule, GivesUpWhatItHasNotSurvivedThreeTimes)
{
    const ScheduledAction fatal{.id = u"7"_s, .archive = "/a", .items = {"/one"}, .attempts = 3};
    const ScheduledAction tried{.id = u"8"_s, .archive = "/b", .items = {"/two"}, .attempts = 2};
    KeptDictionary(m_file).keep(
        {{u"actions"_s, QVariantList{fatal.asDictionary(), tried.asDictionary()}}, {u"lastNumber"_s, 8}});
    const auto schedule = this->schedule();
    m_engine.end();

    const QVariantMap all = runs(*schedule, 2);
    EXPECT_EQ(all.value(u"7"_s).toMap().value(u"outcome"_s), u"failed"_s);
    EXPECT_EQ(all.value(u"8"_s).toMap().value(u"outcome"_s), u"done"_s);
    EXPECT_EQ(m_engine.begun.count(), 1U);
}

TEST_F(ACaptureSchedule, WaitsForTheHoldTime)
{
    const auto schedule = this->schedule();
    schedule->setHoldTime(m_now + 3600);
    schedule->add("/a.zephra", {"/one"});
    EXPECT_EQ(ids(schedule->nextAction()), QStringList{u"1"_s});

    schedule->setClockAhead(3599);
    EXPECT_EQ(m_engine.begun.count(), 0U);
    EXPECT_EQ(schedule->volatileInfo().value(u"clockAhead"_s), 3599.0);
    m_clock.set(QDateTime::fromSecsSinceEpoch(1767225601, Qt::UTC));
    schedule->setClockAhead(3599);

    EXPECT_TRUE(m_engine.begun.one().has_value());
    m_engine.end();
}

TEST_F(ACaptureSchedule, BeginsByTheTimesOfItsActionsAndLeavesOutSuspendedOnes)
{
    const auto schedule = this->schedule();
    schedule->setHoldTime(m_now + 10);
    for (const char* each : {"/1", "/2", "/3"})
        schedule->add(each, {"/one"});
    schedule->setTime(u"1"_s, m_now + 30);
    schedule->setTime(u"2"_s, m_now + 20);
    schedule->setSuspended(u"3"_s, true);
    schedule->setSuspended(u"unknown"_s, true);
    schedule->setTime(u"unknown"_s, 1);

    EXPECT_EQ(ids(schedule->nextAction()), QStringList{u"2"_s});
    schedule->setClockAhead(30);
    EXPECT_EQ(m_engine.begun.one()->archive, "/2");
    m_engine.end();
    EXPECT_EQ(m_engine.begun.first(2).at(1).archive, "/1");
    EXPECT_EQ(schedule->nextAction(), QVariantList());
    m_engine.end();
    schedule->setSuspended(u"3"_s, false);
    EXPECT_EQ(m_engine.begun.first(3).at(2).archive, "/3");
    m_engine.end();
}

TEST_F(ACaptureSchedule, TakesWhatIsNoTimeAsNone)
{
    const auto schedule = this->schedule();

    schedule->setHoldTime(std::numeric_limits<double>::quiet_NaN());
    schedule->setClockAhead(std::numeric_limits<double>::infinity());
    schedule->add("/a", {"/one"});

    EXPECT_EQ(schedule->holdTime(), 0);
    EXPECT_TRUE(m_engine.begun.one().has_value());
    m_engine.end();
}

TEST_F(ACaptureSchedule, KeepsTheLatestHundredRuns)
{
    const auto schedule = this->schedule();
    for (int i = 0; i < 101; ++i) {
        schedule->add("/a", {"/one"});
        m_engine.end();
    }
    schedule->add("/last", {"/one"});

    EXPECT_EQ(m_engine.begun.first(102).size(), 102U);
    EXPECT_EQ(schedule->runSummaries().size(), 100);
    EXPECT_FALSE(schedule->runSummaries().contains(u"1"_s));
    m_engine.end();
}

TEST_F(ACaptureSchedule, BeginsAnewWhereItsFileIsBroken)
{
    m_tree.add("state/");
    m_tree.write("state/schedule.plist", "bplist00 not at all");
    const auto schedule = this->schedule();

    EXPECT_EQ(schedule->actions(), QVariantList());
    EXPECT_EQ(m_logr->lines().filter(u"cannot read \""_s).size(), 1);
}

} // namespace
} // namespace havrel
