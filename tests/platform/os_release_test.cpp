// SPDX-License-Identifier: MIT
#include "platform/os_release.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace havrel::platform {
namespace {

struct LineCase
{
    const char* label;
    const char* line;
    const char* expected; // of the name NAME; null when the line assigns nothing to it
};

class OSReleaseLine : public ::testing::TestWithParam<LineCase>
{
};

TEST_P(OSReleaseLine, IsReadAsAShellReadsIt)
{
    const QMap<QByteArray, QString> assignments = parseOSRelease(GetParam().line);

    if (GetParam().expected == nullptr)
        EXPECT_FALSE(assignments.contains("NAME"));
    else
        EXPECT_EQ(assignments.value("NAME").toStdString(), GetParam().expected);
}

constexpr auto kLineCases = std::to_array<LineCase>({
    {"bare", "NAME=bookworm", "bookworm"},
    {"double_quotes", "NAME=\"Debian GNU/Linux 12 (bookworm)\"", "Debian GNU/Linux 12 (bookworm)"},
    {"single_quotes", "NAME='a \"b\" \\c'", "a \"b\" \\c"},
    {"escapes_in_double_quotes", R"(NAME="\"a\" \$x \\ \`")", "\"a\" $x \\ `"},
    {"other_backslash_in_double_quotes", R"(NAME="a\n")", "a\\n"},
    {"escape_without_quotes", R"(NAME=a\ b)", "a b"},
    {"empty", "NAME=", ""},
    {"empty_quotes", "NAME=\"\"", ""},
    {"pieces", R"(NAME=a"b c"'d')", "ab cd"},
    {"equals_in_value", "NAME=a=b", "a=b"},
    {"indented", "  NAME=a  ", "a"},
    {"carriage_return", "NAME=a\r", "a"},
    {"umlaut", "NAME=\"B\xC3\xA4r\"", "B\xC3\xA4r"},
    {"not_utf8", "NAME=\"B\xE4r\"", "B\xEF\xBF\xBDr"},
    {"unfinished_quote", "NAME=\"a", nullptr},
    {"trailing_backslash", "NAME=a\\", "a\\"},
    {"two_words", "NAME=a b", nullptr},
    {"comment", "#NAME=a", nullptr},
    {"no_assignment", "NAME", nullptr},
    {"no_name", "=a", nullptr},
    {"lower_case_name", "name=a", nullptr},
    {"blank_before_equals", "NAME =a", nullptr},
});

INSTANTIATE_TEST_SUITE_P(Cases, OSReleaseLine, ::testing::ValuesIn(kLineCases), [](const auto& each) {
    return std::string(each.param.label);
});

TEST(OSRelease, KeepsTheLastOfTwoAssignmentsAndIgnoresTheRest)
{
    const QMap<QByteArray, QString> assignments = parseOSRelease("# comment\n\nA=1\nnonsense\nB_2=\"x\"\nA=2");

    EXPECT_EQ(assignments.size(), 2);
    EXPECT_EQ(assignments.value("A"), QStringLiteral("2"));
    EXPECT_EQ(assignments.value("B_2"), QStringLiteral("x"));
}

TEST(OSRelease, ReadsNothingFromNothing)
{
    EXPECT_TRUE(parseOSRelease({}).isEmpty());
    EXPECT_TRUE(parseOSRelease(QByteArray("\0\n\0=\0", 5)).isEmpty());
    EXPECT_EQ(parseOSRelease(QByteArray("A=x\0y", 5)).value("A"), QString::fromUtf16(u"x\0y", 3));
}

TEST(OSRelease, ReadsBackWhatWasQuotedForAShell)
{
    for (int first = 1; first < 128; ++first) {
        if (first == '\n')
            continue;
        const QByteArray value{"x" + QByteArray(1, static_cast<char>(first)) + "\\y"};
        QByteArray quoted = value;
        for (const char special : {'\\', '"', '$', '`'})
            quoted.replace(QByteArray(1, special), QByteArray("\\") + special);
        ASSERT_EQ(parseOSRelease("NAME=\"" + quoted + '"').value("NAME"), QString::fromLatin1(value)) << first;
    }
}

} // namespace
} // namespace havrel::platform
