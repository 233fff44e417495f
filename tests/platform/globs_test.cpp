// SPDX-License-Identifier: MIT
#include "platform/globs.h"

#include <QByteArray>
#include <QString>

#include <gtest/gtest.h>

#include <array>

#include <fnmatch.h>

namespace havrel::platform {
namespace {

struct GlobRow
{
    const char* pattern;
    const char* subject;
    int outcome;
};

constexpr auto kGlobs = std::to_array<GlobRow>({
    {"*.ext", "name.ext", 0},
    {"*.txt", "name.ext", FNM_NOMATCH},
    {"name.???", "name.ext", 0},
    {"[m-o]*", "name.ext", 0},
    {"*", ".hidden", FNM_NOMATCH}, // a leading period wants a period
    {".*", ".hidden", 0},
    {"a*b", "a/b", 0}, // slashes are ordinary here
    {"", "name.ext", FNM_NOMATCH},
    {"\xC3\xA9*", "\xC3\xA9t\xC3\xA9", 0},
});

TEST(Globs, MatchAsTheCLibrarySays)
{
    for (const GlobRow& row : kGlobs)
        EXPECT_EQ(matchGlob(QString::fromUtf8(row.pattern), row.subject), row.outcome) << row.pattern;
}

TEST(Globs, OfAnyLengthReachTheMatcherWhole)
{
    for (const qsizetype length : {0, 1, 255, 256, 257, 1 << 20}) {
        const QByteArray name(length, 'a');
        EXPECT_EQ(matchGlob(QString::fromLatin1(name), name.constData()), 0) << length;
        EXPECT_EQ(matchGlob(QString::fromLatin1(name) + u'b', name.constData()), FNM_NOMATCH) << length;
    }
}

TEST(Globs, MatchBytesThatAreNotUTF8)
{
    EXPECT_EQ(matchGlob(QString(QChar(0xDCFF)) + u'*', "\xFFname"), 0);
}

TEST(Globs, EndAtANUL)
{
    EXPECT_EQ(matchGlob(u"name\0["_qs, "name"), 0);
}

TEST(Globs, GoToTheReplacedMatcherAndItsFlagsAlong)
{
    static QByteArray s_seen;
    static int s_flags = 0;
    const GlobMatcher previous = replaceGlobMatcher([](const char* pattern, const char*, int flags) {
        s_seen = pattern;
        s_flags = flags;
        return 42;
    });

    EXPECT_EQ(matchGlob(u"a\u00E9", "name"), 42);
    EXPECT_NE(replaceGlobMatcher(nullptr), previous);

    EXPECT_EQ(s_seen, "a\xC3\xA9");
    EXPECT_EQ(s_flags, 4);
    EXPECT_EQ(matchGlob(u"name", "name"), 0);
}

} // namespace
} // namespace havrel::platform
