// SPDX-License-Identifier: MIT
#include "platform/collation.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace havrel::platform {
namespace {

struct PairCase
{
    const char* label;
    const char16_t* first;
    const char16_t* second;
};

class NameOrder : public ::testing::TestWithParam<PairCase>
{
};

TEST_P(NameOrder, PutsTheFirstBeforeTheSecond)
{
    const QStringView first(GetParam().first);
    const QStringView second(GetParam().second);

    EXPECT_EQ(collate(first, second), std::strong_ordering::less);
    EXPECT_EQ(collate(second, first), std::strong_ordering::greater);
}

constexpr auto kPairCases = std::to_array<PairCase>({
    {"letters", u"a", u"b"},
    {"letters_whatever_their_case", u"a", u"B"},
    {"letters_whatever_their_case_the_other_way", u"A", u"b"},
    {"case_last", u"a", u"A"},
    {"case_only_when_all_letters_are_equal", u"Ab", u"ac"},
    {"numbers_by_value", u"file 2", u"file 10"},
    {"numbers_by_value_inside", u"a2b", u"a10a"},
    {"leading_zeros_by_code_points", u"file 02", u"file 2"},
    {"numbers_beyond_64_bits", u"99999999999999999999999", u"100000000000000000000000"},
    {"numbers_before_letters", u"9", u"a"},
    {"prefix_first", u"abc", u"abcd"},
    {"empty_first", u"", u"a"},
    {"accents_before_case", u"resume", u"R\u00E9sum\u00E9"},
    {"accented_letter_with_its_base", u"\u00E9tude", u"f"},
    {"composed_forms_by_code_points", u"e\u0301", u"\u00E9"},
    {"punctuation_counts", u"a-b", u"ab"},
    {"invisible_characters_by_code_points", u"a", u"a\u0001"},
    {"code_points_not_units", u"a\uFE00", u"a\U000E0100"},
    {"lone_surrogates", u"a\xDC80", u"a\xDC81"},
});

INSTANTIATE_TEST_SUITE_P(Cases, NameOrder, ::testing::ValuesIn(kPairCases), [](const auto& each) {
    return std::string(each.param.label);
});

TEST(Collation, IsATotalOrder)
{
    const QStringList names{QString(),         u"a"_qs,       u"A"_qs,       u"\u00E4"_qs,  u"a\u0308"_qs,
                            u"a1"_qs,          u"a01"_qs,     u"a10"_qs,     u"a\u0001"_qs, u"\u0001"_qs,
                            u"\u200D"_qs,      u"\xDC80"_qs,  u"\xD800"_qs,  u"\uFFFF"_qs,  u"\U0001F600"_qs,
                            u"stra\u00DFe"_qs, u"strasse"_qs, u"STRASSE"_qs, u" "_qs,       u"_"_qs};
    for (const QString& a : names)
        for (const QString& b : names) {
            EXPECT_EQ(collate(a, b) == 0, a == b);
            EXPECT_EQ(collate(a, b), 0 <=> collate(b, a));
            for (const QString& c : names)
                EXPECT_FALSE(collate(a, b) < 0 && collate(b, c) < 0 && collate(a, c) >= 0);
        }
}

TEST(Collation, ComparesTextsThatHoldTheNullCharacter)
{
    const QString longer = QStringLiteral("a") + QChar(u'\0') + QStringLiteral("b");

    EXPECT_EQ(collate(QStringLiteral("a"), longer), std::strong_ordering::less);
    EXPECT_EQ(collate(longer, longer), std::strong_ordering::equal);
}

} // namespace
} // namespace havrel::platform
