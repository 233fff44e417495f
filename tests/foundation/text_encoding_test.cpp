// SPDX-License-Identifier: MIT
#include "foundation/text_encoding.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>

namespace havrel {
namespace {

using namespace std::string_view_literals;

struct DecodingCase
{
    const char* label;
    std::uint32_t encoding;
    std::string_view bytes;
    const char16_t* expected; // null: no text
};

class TextDecoding : public ::testing::TestWithParam<DecodingCase>
{
};

TEST_P(TextDecoding, GivesTheTextOrNone)
{
    const QByteArray bytes(GetParam().bytes.data(), static_cast<qsizetype>(GetParam().bytes.size()));
    const std::optional<QString> text = decodedText(bytes, TextEncoding{GetParam().encoding});

    if (GetParam().expected == nullptr)
        EXPECT_FALSE(text.has_value());
    else
        EXPECT_EQ(text, QString::fromUtf16(GetParam().expected));
}

constexpr auto kDecodingCases = std::to_array<DecodingCase>({
    {"utf8", 4, "\xC3\xA4\xF0\x9F\x98\x80"sv, u"\u00E4\U0001F600"},
    {"utf8_is_the_default", 0, "\xC3\xA4"sv, u"\u00E4"},
    {"utf8_invalid", 4, "a\xFF"sv, nullptr},
    {"utf8_cut", 4, "a\xC3"sv, nullptr},
    {"utf8_overlong", 4, "\xC0\x80"sv, nullptr},
    {"utf8_surrogate", 4, "\xED\xA0\x80"sv, nullptr},
    {"utf8_byte_order_mark",
     4,
     "\xEF\xBB\xBF"
     "a"sv,
     u"a"},
    {"ascii", 1, "abc"sv, u"abc"},
    {"ascii_invalid", 1, "ab\x80"sv, nullptr},
    {"latin1", 5, "\xE4\xFF"sv, u"\u00E4\u00FF"},
    {"utf16_by_its_mark", 10, "\xFE\xFF\x00\xE4"sv, u"\u00E4"},
    {"utf16_by_its_other_mark", 10, "\xFF\xFE\xE4\x00"sv, u"\u00E4"},
    {"utf16_big", 0x90000100, "\x00\xE4\xD8\x3D\xDE\x00"sv, u"\u00E4\U0001F600"},
    {"utf16_little", 0x94000100, "\xE4\x00"sv, u"\u00E4"},
    {"utf16_odd", 0x94000100, "\xE4\x00\x61"sv, nullptr},
    {"utf16_half_a_pair", 0x90000100, "\xD8\x3D"sv, nullptr},
    {"utf32_by_its_mark", 0x8C000100, "\x00\x00\xFE\xFF\x00\x00\x00\xE4"sv, u"\u00E4"},
    {"utf32_big", 0x98000100, "\x00\x01\xF6\x00"sv, u"\U0001F600"},
    {"utf32_little", 0x9C000100, "\xE4\x00\x00\x00"sv, u"\u00E4"},
    {"utf32_cut", 0x9C000100, "\xE4\x00\x00"sv, nullptr},
    {"utf32_beyond_unicode", 0x98000100, "\x00\x11\x00\x00"sv, nullptr},
    {"utf32_surrogate", 0x98000100, "\x00\x00\xD8\x00"sv, nullptr},
    {"unknown", 30, "abc"sv, nullptr},
    {"nothing", 4, ""sv, u""},
    {"nothing_in_an_unknown_encoding", 2, ""sv, nullptr},
});

INSTANTIATE_TEST_SUITE_P(Cases, TextDecoding, ::testing::ValuesIn(kDecodingCases), [](const auto& each) {
    return std::string(each.param.label);
});

} // namespace
} // namespace havrel
