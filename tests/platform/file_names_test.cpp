// SPDX-License-Identifier: MIT
#include "platform/file_names.h"

#include <gtest/gtest.h>

#include <array>
#include <random>

namespace havrel::platform {
namespace {

struct NameCase
{
    const char* label;
    QByteArray bytes;
    QString text;
};

class FileNames : public ::testing::TestWithParam<NameCase>
{
};

TEST_P(FileNames, BecomeTextAndBytesAgain)
{
    EXPECT_EQ(textOfFileName(GetParam().bytes), GetParam().text);
    EXPECT_EQ(bytesOfFileName(GetParam().text), GetParam().bytes);
}

QString lone(std::initializer_list<char16_t> units)
{
    QString text;
    for (const char16_t unit : units)
        text += QChar(unit);
    return text;
}

const std::array kNameCases = {
    NameCase{"empty", "", u""_qs},
    NameCase{"ascii", "a b.txt", u"a b.txt"_qs},
    NameCase{"two_bytes", "\xC3\xA9", u"\u00E9"_qs},
    NameCase{"four_bytes", "\xF0\x9F\x98\x80", u"\U0001F600"_qs},
    NameCase{"byte_order_mark_at_the_start", "\xEF\xBB\xBFx", u"\uFEFFx"_qs},
    NameCase{"two_byte_order_marks", "\xEF\xBB\xBF\xEF\xBB\xBF", u"\uFEFF\uFEFF"_qs},
    NameCase{"byte_order_mark_between_bad_bytes", "\xD1\xEF\xBB\xBF\x96", lone({0xDCD1, 0xFEFF, 0xDC96})},
    NameCase{"latin1_byte", "bad\xFF.txt", u"bad"_qs + lone({0xDCFF}) + u".txt"_qs},
    NameCase{"lone_continuation", "\x80", lone({0xDC80})},
    NameCase{"truncated_sequence", "\xE2\x82", lone({0xDCE2, 0xDC82})},
    NameCase{"overlong_slash", "\xC0\xAF", lone({0xDCC0, 0xDCAF})},
    NameCase{"encoded_surrogate", "\xED\xB2\x80", lone({0xDCED, 0xDCB2, 0xDC80})},
    NameCase{"beyond_unicode", "\xF4\x90\x80\x80", lone({0xDCF4, 0xDC90, 0xDC80, 0xDC80})},
    NameCase{"newline_and_control", "new\nline\x01", u"new\nline\x01"_qs},
    NameCase{"good_after_bad", "\xFFz\xC3\xA9", lone({0xDCFF}) + u"z\u00E9"_qs},
};

INSTANTIATE_TEST_SUITE_P(Cases, FileNames, ::testing::ValuesIn(kNameCases), [](const auto& each) {
    return std::string(each.param.label);
});

TEST(FileNames, OfAMillionByteOrderMarksSurviveTheWayToTextAndBack)
{
    const QByteArray marks = QByteArray("\xEF\xBB\xBF").repeated(1 << 20);

    EXPECT_EQ(textOfFileName(marks), QString(1 << 20, QChar(QChar::ByteOrderMark)));
    EXPECT_EQ(bytesOfFileName(textOfFileName(marks + '\xFF')), marks + '\xFF');
}

TEST(FileNames, OfAnyBytesSurviveTheWayToTextAndBack)
{
    std::mt19937 random(20260101); // NOLINT(cert-msc51-cpp): the same names in every run
    std::uniform_int_distribution<int> byte(0, 255);
    std::uniform_int_distribution<int> length(0, 40);
    for (int round = 0; round < 20000; ++round) {
        QByteArray name;
        for (int i = length(random); i > 0; --i)
            name += static_cast<char>(byte(random));
        ASSERT_EQ(bytesOfFileName(textOfFileName(name)), name) << name.toHex().constData();
    }
}

TEST(FileNames, ReplaceSurrogatesThatStandForNoByte)
{
    EXPECT_EQ(bytesOfFileName(lone({u'a', 0xD800, u'b'})), "a?b");
}

} // namespace
} // namespace havrel::platform
