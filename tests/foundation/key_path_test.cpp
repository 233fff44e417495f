// SPDX-License-Identifier: MIT
#include "foundation/key_path.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace havrel {
namespace {

QStringList textsOf(const std::vector<KeyPath>& names)
{
    QStringList result;
    for (const KeyPath name : names)
        result.push_back(name.text());
    return result;
}

TEST(KeyPath, IsEqualByItsText)
{
    EXPECT_EQ(KeyPath("title"), KeyPath::fromText(u"title"));
    EXPECT_NE(KeyPath("title"), KeyPath("titles"));
    EXPECT_EQ(KeyPath::fromText(u"größe").text(), QStringLiteral("größe"));
}

TEST(KeyPath, KeepsOneCopyOfATextThatIsMadeAtRunTime)
{
    EXPECT_EQ(KeyPath::fromText(u"made.later").chars().data(), KeyPath::fromText(u"made.later").chars().data());
}

TEST(KeyPath, EndsItsCharactersWithANul)
{
    EXPECT_STREQ(KeyPath::fromText(u"made.later").names().front().chars().data(), "made");
}

TEST(KeyPath, FallsIntoNamesAtItsDots)
{
    EXPECT_FALSE(KeyPath("title").hasSeveralNames());
    EXPECT_TRUE(KeyPath("sequel.title").hasSeveralNames());
    EXPECT_EQ(textsOf(KeyPath("title").names()), QStringList({QStringLiteral("title")}));
    EXPECT_EQ(textsOf(KeyPath("a.b.c").names()),
              QStringList({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}));
    EXPECT_EQ(textsOf(KeyPath(".").names()), QStringList({QString(), QString()}));
}

} // namespace
} // namespace havrel
