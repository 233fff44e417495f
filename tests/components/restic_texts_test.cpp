// SPDX-License-Identifier: MIT
#include "components/restic_texts.h"

#include <gtest/gtest.h>

namespace havrel::restic {
namespace {

TEST(ResticTexts, MakePatternsThatMatchOneNameOnly)
{
    const std::pair<const char*, const char*> rows[] = {
        {"/a/b", "/a/b"},
        {"/*", "/\\*"},
        {"/**/x", "/\\*\\*/x"},
        {"/[a-z]?", "/\\[a-z]\\?"},
        {"/back\\slash", "/back\\\\slash"},
        {"/!a$b\n\xff", "/!a$b\n\xff"},
    };
    for (const auto& [path, pattern] : rows)
        EXPECT_EQ(patternOf(path), pattern);
}

TEST(ResticTexts, CarryAnyBytesInTags)
{
    EXPECT_EQ(tagTextOf("/a b,c=d\xff%"), "/a%20b%2Cc%3Dd%FF%25");
    QByteArray all;
    for (int i = 1; i < 256; ++i)
        all += static_cast<char>(i);
    EXPECT_EQ(bytesOfTagText(tagTextOf(all)), all);
    EXPECT_FALSE(tagTextOf(all).contains(',')) << "a comma begins another tag";
    EXPECT_FALSE(tagTextOf(all).contains('=')) << "it parts a link from its target";
}

TEST(ResticTexts, UnderstandQuotedNames)
{
    const std::pair<const char*, const char*> rows[] = {
        {"", ""},
        {"plain", "plain"},
        {"a\\nb\\tc", "a\nb\tc"},
        {"\\a\\b\\f\\r\\v", "\a\b\f\r\v"},
        {"q\\\"uo\\\\te", "q\"uo\\te"},
        {"bad\\xff\\xFE", "bad\xff\xfe"},
        {"\\ufffd", "\xEF\xBF\xBD"},
        {"\\U0001f389", "\xF0\x9F\x8E\x89"},
        {"\xC3\xBC", "\xC3\xBC"},
        {"\\x7f\\u200b", "\x7f\xE2\x80\x8B"},
    };
    for (const auto& [quoted, bytes] : rows)
        EXPECT_EQ(bytesOfQuoted(quoted), QByteArray(bytes)) << quoted;
}

TEST(ResticTexts, RefuseWhatIsNotQuoted)
{
    for (const char* quoted :
         {"\\", "\\q", "\\x", "\\xf", "\\xfg", "\\u12", "\\u+123", "\\ud800", "\\U00110000", "\\x f"})
        EXPECT_EQ(bytesOfQuoted(quoted), std::nullopt) << quoted;
}

TEST(ResticTexts, KnowWhatTheEngineWouldLose)
{
    EXPECT_TRUE(survivesAsText("/plain\n\xC3\xBC"));
    EXPECT_FALSE(survivesAsText("/n\xff"));
    EXPECT_FALSE(survivesAsText("/\xED\xA0\x80")) << "half of a pair";
    EXPECT_FALSE(survivesAsText("/\xEF\xBF\xBD")) << "what losses look like";
}

} // namespace
} // namespace havrel::restic
