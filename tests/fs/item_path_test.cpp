// SPDX-License-Identifier: MIT
#include "fs/item_path.h"

#include "tests/support/fake_host.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

struct UriRow
{
    const char* label;
    QByteArray uri;
    QByteArray path; // empty: refused
};

const UriRow kUris[] = {
    {"plain", "file:///a/b%20c", "/a/b c"},
    {"bytes", "file:///bad%FF.txt", "/bad\xff.txt"},
    {"raw_bytes", "file:///bad\xff.txt", "/bad\xff.txt"},
    {"newline", "file:///new%0Aline", "/new\nline"},
    {"folder", "file:///a/", "/a/"},
    {"capital_scheme", "FILE:///a", "/a"},
    {"localhost", "file://LOCALHOST/a", "/a"},
    {"own_host", "file://Fake/a", "/a"},
    {"without_authority", "file:/a", "/a"},
    {"elsewhere", "file://server/a", ""},
    {"relative", "file:a", ""},
    {"without_path", "file://", ""},
    {"nul", "file:///a%00b", ""},
    {"bare_percent", "file:///100%", ""},
    {"query", "file:///a?b", ""},
    {"fragment", "file:///a#b", ""},
};

TEST(ItemPath, IsTheBytesThatAFileUriMeans)
{
    const FakeHost host; // "fake"
    for (const UriRow& row : kUris) {
        const ItemPath found = pathOfFileURI(row.uri);
        EXPECT_EQ(found.path, row.path) << row.label;
        EXPECT_EQ(found.fault.isNull(), !row.path.isEmpty()) << row.label;
    }
}

TEST(ItemPath, IsTakenFromAUriOfTheFileSchemeInWhateverCase)
{
    EXPECT_TRUE(isFileURI("file:"));
    EXPECT_TRUE(isFileURI("File:///a"));
    EXPECT_FALSE(isFileURI("file"));
    EXPECT_FALSE(isFileURI("files:///a"));
    EXPECT_FALSE(isFileURI(""));
}

} // namespace
} // namespace havrel
