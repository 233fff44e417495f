// SPDX-License-Identifier: MIT
#include "app/pasteboard_items.h"

#include "fs/path_text.h"
#include "tests/support/fake_host.h"
#include "tests/support/temporary_tree.h"

#include <gtest/gtest.h>

namespace havrel::tests {
namespace {

QByteArrayList pathsOf(const QList<QUrl>& urls)
{
    QByteArrayList paths;
    for (const QUrl& each : urls)
        paths << path_text::fromURL(each);
    return paths;
}

struct ListRow
{
    const char* label;
    QByteArray list;
    QByteArrayList paths;
};

TEST(PasteboardItems, AreTheFilesOfAListOfUris)
{
    const FakeHost host; // "fake"
    const ListRow rows[] = {
        {"none", "", {}},
        {"one", "file:///a\r\n", {"/a"}},
        {"in_order", "file:///b\r\nfile:///a\r\n", {"/b", "/a"}},
        {"bare_newlines", "file:///a\nfile:///b", {"/a", "/b"}},
        {"the_same_twice", "file:///a\r\nfile:///a\r\n", {"/a", "/a"}},
        {"comments_and_empty_lines", "# file:///no\r\n\r\nfile:///a\r\n#\r\n", {"/a"}},
        {"not_utf8", "file:///bad%FF%80\r\n", {"/bad\xff\x80"}},
        {"raw_bytes", "file:///bad\xff\r\n", {"/bad\xff"}},
        {"hard_names",
         "file:///new%0Aline\r\nfile:///per%25cent\r\nfile:///dollar$HOME\r\nfile:///quo'te%22\r\n",
         {"/new\nline", "/per%cent", "/dollar$HOME", "/quo'te\""}},
        {"hash_and_question_mark", "file:///a%23b%3Fc\r\n", {"/a#b?c"}},
        {"folders", "file:///a/\r\nfile:///link/.\r\n", {"/a", "/link"}},
        {"root", "file:///\r\n", {"/"}},
        {"this_host", "file://FAKE/a\r\nFILE://localhost/b\r\nfile:/c\r\n", {"/a", "/b", "/c"}},
        {"elsewhere", "http://a/b\r\nfile://server/a\r\nsmb://s/a\r\ntrash:///a\r\n/a\r\n", {}},
        {"mixed", "http://a/b\r\nfile:///a\r\n", {"/a"}},
        {"wrong", "file:///a?b\r\nfile:///a#b\r\nfile:///%\r\nfile:///a%00b\r\nfile:a\r\nfile:\r\n", {}},
    };
    for (const ListRow& row : rows) {
        const auto urls = fileURLsOnPasteboard({{pasteboard::kUriList, row.list}});
        ASSERT_TRUE(urls) << row.label;
        EXPECT_EQ(pathsOf(*urls), row.paths) << row.label;
    }
}

TEST(PasteboardItems, TellNoListFromAnEmptyOne)
{
    EXPECT_FALSE(fileURLsOnPasteboard({}));
    EXPECT_FALSE(fileURLsOnPasteboard({{pasteboard::kPlainText, "file:///a"}}));
    EXPECT_TRUE(fileURLsOnPasteboard({{pasteboard::kUriList, QByteArray()}}));
}

TEST(PasteboardItems, AreThePathsOfTextThatNameSomething)
{
    const TemporaryTree tree{"a", "new folder/", "bad\xff", "~"};
    tree.addLink("dangling", "nowhere");
    tree.addLink("link", "new folder");
    const QByteArray text = tree.bytes("a") + "\r\n" + tree.bytes("none") + "\n\n" + tree.bytes("new folder") + "/\n" +
                            tree.bytes("bad\xff") + "\n" + tree.bytes("dangling") + "\n" + tree.bytes("link") +
                            "/\n~\na\n.\nfile://" + tree.bytes("a") + "\n" + tree.bytes("a") + QByteArray("\0x\n", 3) +
                            tree.bytes("a");
    EXPECT_EQ(pathsOf(reachableURLsOnPasteboard({{pasteboard::kPlainText, text}})),
              (QByteArrayList{tree.bytes("a"),
                              tree.bytes("new folder"),
                              tree.bytes("bad\xff"),
                              tree.bytes("dangling"),
                              tree.bytes("link"),
                              tree.bytes("a")}));
    EXPECT_EQ(reachableURLsOnPasteboard({}), QList<QUrl>());
    EXPECT_EQ(reachableURLsOnPasteboard({{pasteboard::kPlainText, ""}}), QList<QUrl>());
}

} // namespace
} // namespace havrel::tests
