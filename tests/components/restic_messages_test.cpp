// SPDX-License-Identifier: MIT
#include "components/restic_messages.h"

#include <gtest/gtest.h>

namespace havrel::restic {
namespace {

TEST(ResticMessages, TellProgress)
{
    const CaptureMessage message =
        captureMessageOf(R"({"message_type":"status","percent_done":0.25,"total_files":20533,"files_done":1215,)"
                         R"("total_bytes":120915,"bytes_done":7154,"current_files":["/vs/a/f1","/b"]})");
    ASSERT_TRUE(message.progress.has_value());
    EXPECT_FALSE(message.summary.has_value());
    EXPECT_EQ(message.progress->fraction, 0.25);
    EXPECT_EQ(message.progress->files, 20533);
    EXPECT_EQ(message.progress->filesDone, 1215);
    EXPECT_EQ(message.progress->bytes, 120915);
    EXPECT_EQ(message.progress->bytesDone, 7154);
    EXPECT_EQ(message.progress->current, QStringList({QStringLiteral("/vs/a/f1"), QStringLiteral("/b")}));
    EXPECT_EQ(captureMessageOf(R"({"message_type":"status","percent_done":1.7})").progress->fraction, 1.0);
}

TEST(ResticMessages, TellWhatWasDone)
{
    const CaptureMessage message =
        captureMessageOf(R"({"message_type":"summary","files_new":6,"files_changed":1,"files_unmodified":2,)"
                         R"("data_added":530223,"total_bytes_processed":10485772,"snapshot_id":"5c515f79"})");
    ASSERT_TRUE(message.summary.has_value());
    EXPECT_EQ(message.summary->capture, QStringLiteral("5c515f79"));
    EXPECT_EQ(message.summary->filesNew, 6);
    EXPECT_EQ(message.summary->filesChanged, 1);
    EXPECT_EQ(message.summary->filesUnmodified, 2);
    EXPECT_EQ(message.summary->bytesAdded, 530223);
    EXPECT_EQ(message.summary->bytesProcessed, 10485772);
}

TEST(ResticMessages, AreNothingWhenTheyAreUnknown)
{
    for (const char* line :
         {"", "{", "[]", "null", "text", R"({"message_type":5})", R"({"message_type":"later"})", "\xff"}) {
        const CaptureMessage message = captureMessageOf(line);
        EXPECT_FALSE(message.progress || message.summary) << line;
        EXPECT_FALSE(problemOf(line).has_value()) << line;
        EXPECT_FALSE(itemOf(line).has_value()) << line;
        EXPECT_EQ(wordsOf(line), line);
    }
}

struct ProblemRow
{
    const char* line;
    const char* item;
    const char* reason;
};

TEST(ResticMessages, TellWhatCouldNotBeRead)
{
    const ProblemRow rows[] = {
        {R"({"message_type":"error","error":{"Op":"lstat","Path":"a/f2","Err":2},"during":"archival","item":"/a/f2"})",
         "/a/f2",
         "No such file or directory"},
        {R"({"message_type":"error","error":{},"during":"scan","item":"/no"})", "/no", "cannot be read"},
        {R"({"message_type":"error","error":{"message":"open /a: permission denied"},"item":"/a"})",
         "/a",
         "open /a: permission denied"},
        {"/tmp/n\xff does not exist, skipping", "/tmp/n\xED\xB3\xBF", "it is not there"},
    };
    for (const ProblemRow& row : rows) {
        const std::optional<EngineProblem> problem = problemOf(row.line);
        ASSERT_TRUE(problem.has_value()) << row.line;
        if (QByteArray(row.line).contains('\xff'))
            EXPECT_EQ(problem->item, QString(QStringLiteral("/tmp/n") + QChar(0xDCFF)));
        else
            EXPECT_EQ(problem->item.toStdString(), row.item);
        EXPECT_EQ(problem->reason.toStdString(), row.reason);
    }
}

TEST(ResticMessages, TellTheWordsOfLaterVersions)
{
    EXPECT_EQ(wordsOf(R"({"message_type":"exit_error","code":12,"message":"Fatal: wrong password"})"),
              "Fatal: wrong password");
}

TEST(ResticMessages, ListCapturesWithTheBytesThatTheirTagsKeep)
{
    const auto captures = capturesOf(
        R"([{"time":"2026-11-21T18:44:56.678520955+01:00","tree":"beef","paths":["/b","/n\ufffd"],"hostname":"h",)"
        R"("username":"u","tags":["item:/n%FF","link:/n%FF/l=%FE%2C","other","link:","link:x"],"id":"2222"},)"
        R"({"time":"2026-11-21T17:44:55.1Z","paths":["/a"],"id":"1111"}])");
    ASSERT_TRUE(captures.has_value());
    ASSERT_EQ(captures->size(), 2);
    EXPECT_EQ(captures->at(0).record.id, QStringLiteral("1111")) << "the oldest first";
    const StoredCapture& second = captures->at(1);
    EXPECT_EQ(second.record.items, QByteArrayList({"/b", "/n\xff"}));
    EXPECT_EQ(second.record.date, QDateTime::fromMSecsSinceEpoch(1795283096679, Qt::UTC));
    EXPECT_EQ(second.record.host, QStringLiteral("h"));
    EXPECT_EQ(second.record.user, QStringLiteral("u"));
    EXPECT_EQ(second.tree, "beef");
    EXPECT_EQ(second.links, (QHash<QByteArray, QByteArray>{{"/n\xff/l", "\xfe,"}}));

    EXPECT_TRUE(capturesOf("[]")->isEmpty());
    EXPECT_TRUE(capturesOf("null\n")->isEmpty());
    EXPECT_FALSE(capturesOf("nonsense").has_value());
}

TEST(ResticMessages, GiveTagsOnlyToWhatWouldBeLost)
{
    EXPECT_TRUE(tagsOf({"/plain", "/\xC3\xBC"}, {}).isEmpty());
    EXPECT_EQ(tagsOf({"/plain", "/n\xff"}, {{"/l", "a\xff"}}), QByteArrayList({"item:/n%FF", "link:/l=a%FF"}));
}

TEST(ResticMessages, DescribeItems)
{
    const auto item = itemOf(R"({"name":"s","type":"symlink","path":"/t\n/\ufffd","size":7,"mode":134218239,)"
                             R"("mtime":"2001-02-03T04:05:06.123456789Z","struct_type":"node"})");
    ASSERT_TRUE(item.has_value());
    EXPECT_EQ(item->path, "/t\n/\xEF\xBF\xBD");
    EXPECT_EQ(item->type, platform::ItemType::SymbolicLink);
    EXPECT_EQ(item->size, 7);
    EXPECT_EQ(item->mode, 0777U);
    EXPECT_EQ(item->modified, QDateTime::fromMSecsSinceEpoch(981173106123, Qt::UTC));
}

TEST(ResticMessages, DescribeTrees)
{
    const auto tree = treeOf(R"({"nodes":[{"name":"bad\\xff","type":"dir","subtree":"beef","extended_attributes":)"
                             R"([{"name":"user.x","value":"AP8="}]},{"name":"wrong\\q"},{"name":"plain"}]})");
    ASSERT_TRUE(tree.has_value());
    ASSERT_EQ(tree->size(), 2) << "without the one whose name means nothing";
    EXPECT_EQ(tree->at(0).name, "bad\xff");
    EXPECT_EQ(tree->at(0).subtree, "beef");
    ASSERT_EQ(tree->at(0).attributes.size(), 1);
    EXPECT_EQ(tree->at(0).attributes[0].first, "user.x");
    EXPECT_EQ(tree->at(0).attributes[0].second, QByteArray("\0\xff", 2));
    EXPECT_FALSE(treeOf("{}").has_value());
    EXPECT_FALSE(treeOf("nonsense").has_value());
}

} // namespace
} // namespace havrel::restic
