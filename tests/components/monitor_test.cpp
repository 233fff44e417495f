// SPDX-License-Identifier: MIT
#include "components/monitor.h"

#include "components/archive_file.h"
#include "messaging/carried_value.h"
#include "messaging/protocols.h"
#include "tests/components/component_peer.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace havrel {
namespace {

using tests::answerOf;
using namespace Qt::StringLiterals;

class AMonitor : public ::testing::Test
{
protected:
    /// An archive whose file is there.
    QByteArray archive(const char* name, const QByteArrayList& items, qint64 captured)
    {
        m_tree.write(name, "an archive");
        const QByteArray path = m_tree.bytes(name);
        const ArchiveFile file = ArchiveFile::of(u"restic"_s, "/place", {});
        if (items.isEmpty())
            m_registry.note(file, path);
        else
            m_registry.noteCapture(file, path, items, QDateTime::fromSecsSinceEpoch(978'307'200 + captured, Qt::UTC));
        return path;
    }
    static QByteArrayList pathsIn(const std::optional<QVariantList>& answer)
    {
        QByteArrayList paths;
        for (const QVariant& each : answer.value_or(QVariantList()).value(0).toList())
            paths.append(each.toMap().value(u"path"_s).toByteArray());
        return paths;
    }
    static QByteArrayList recent(Monitor& monitor)
    {
        return pathsIn(answerOf(monitor, "queryRecentlyCapturedRepositoriesWithReply:"));
    }
    static QByteArrayList holding(Monitor& monitor, const QByteArrayList& items)
    {
        return pathsIn(answerOf(
            monitor, "queryRepositoriesForItems:withReply:", {QVariant(QVariantList(items.cbegin(), items.cend()))}));
    }

    TemporaryTree m_tree;
    ArchiveRegistry m_registry{m_tree.bytes("archives")};
};

TEST_F(AMonitor, HandlesEveryMessageOfItsProtocol)
{
    const Monitor monitor(m_tree.bytes("state"), m_registry);

    EXPECT_EQ(tests::unhandled(monitor, protocols::monitoring()), QByteArrayList());
}

TEST_F(AMonitor, KnowsTheArchivesThatWereCapturedToTheLatestFirst)
{
    const QByteArray older = archive("older.zephra", {"/one"}, 100);
    const QByteArray newer = archive("newer.zephra", {"/one"}, 200);
    archive("never.zephra", {}, 0);
    Monitor monitor(m_tree.bytes("state"), m_registry);

    EXPECT_EQ(recent(monitor), (QByteArrayList{newer, older}));
    const QVariantList answer = *answerOf(monitor, "queryRecentlyCapturedRepositoriesWithReply:");
    EXPECT_EQ(answer.value(0).toList().value(0).toMap().value(u"lastCaptureTime"_s), 200.0);
    EXPECT_TRUE(carriedValues({"aa{sv}"}, answer));
}

TEST_F(AMonitor, LooksAgainWhenItIsTold)
{
    Monitor monitor(m_tree.bytes("state"), m_registry);
    const QByteArray made = archive("made.zephra", {"/one"}, 100);

    EXPECT_EQ(recent(monitor), QByteArrayList());
    monitor.received({"refreshRecentRepositoryCache", {}});
    EXPECT_EQ(recent(monitor), QByteArrayList{made});
}

TEST_F(AMonitor, TellsWhichArchivesHoldAllOfTheItems)
{
    const QByteArray both = archive("both.zephra", {"/home/me", QByteArray("/da\xff")}, 100);
    const QByteArray home = archive("home.zephra", {"/home/me"}, 200);
    Monitor monitor(m_tree.bytes("state"), m_registry);

    EXPECT_EQ(holding(monitor, {"/home/me/a/b/"}), (QByteArrayList{home, both}));
    EXPECT_EQ(holding(monitor, {"/home/me", QByteArray("/da\xff/x")}), QByteArrayList{both});
    EXPECT_EQ(holding(monitor, {"/home/mercy"}), QByteArrayList());
    EXPECT_EQ(holding(monitor, {"/home"}), QByteArrayList());
    EXPECT_EQ(holding(monitor, {}), QByteArrayList());
}

TEST_F(AMonitor, KeepsQuietAboutArchivesThatAreNotThere)
{
    const QByteArray gone = archive("gone.zephra", {"/one"}, 100);
    ASSERT_EQ(::unlink(gone.constData()), 0);
    Monitor monitor(m_tree.bytes("state"), m_registry);

    EXPECT_EQ(recent(monitor), QByteArrayList());
    EXPECT_EQ(holding(monitor, {"/one"}), QByteArrayList());
}

TEST_F(AMonitor, HasNoWindows)
{
    Monitor monitor(m_tree.bytes("state"), m_registry);

    monitor.received({"orderMonitorWindowFront", {}});
    monitor.received({"orderMonitorWindowFrontIfVisible", {}});
    monitor.received({"orderStatusWindowFront", {}});
    EXPECT_EQ(answerOf(monitor, "queryStatusWindowHasStatus:"), QVariantList{false});
    EXPECT_EQ(answerOf(monitor, "queryCanMonitorCommandName:withReply:", {u"capture"_s}), QVariantList{false});
}

TEST_F(AMonitor, RemembersWhichNotificationsAreEnabled)
{
    Monitor monitor(m_tree.bytes("state"), m_registry);
    const auto isEnabled = [](Monitor& asked, int type) {
        return answerOf(asked, "queryEnabledUserNotificationForType:withReply:", {type});
    };

    EXPECT_EQ(isEnabled(monitor, 3), QVariantList{false});
    monitor.received({"setUserNotificationForType:enabled:", {3, true}});
    Monitor next(m_tree.bytes("state"), m_registry);
    EXPECT_EQ(isEnabled(next, 3), QVariantList{true});
    EXPECT_EQ(isEnabled(next, 4), QVariantList{false});
}

} // namespace
} // namespace havrel
