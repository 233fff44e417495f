// SPDX-License-Identifier: MIT
#include "foundation/string_values.h"

#include <QString>

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace havrel {
namespace {

constexpr qint64 kMost = std::numeric_limits<qint64>::max();
constexpr qint64 kLeast = std::numeric_limits<qint64>::min();
constexpr double kInfinite = std::numeric_limits<double>::infinity();

struct TextCase
{
    const char* text;
    bool asBool;
    qint64 asInteger;
    double asDouble;
};

void PrintTo(const TextCase& each, std::ostream* out)
{
    *out << '"' << each.text << '"';
}

class StringValue : public ::testing::TestWithParam<TextCase>
{
};

TEST_P(StringValue, IsReadAsFarAsItMakesSense)
{
    const QString text = QString::fromUtf8(GetParam().text);

    EXPECT_EQ(boolValue(text), GetParam().asBool);
    EXPECT_EQ(integerValue(text), GetParam().asInteger);
    EXPECT_EQ(doubleValue(text), GetParam().asDouble);
    EXPECT_EQ(floatValue(text), static_cast<float>(GetParam().asDouble));
}

constexpr auto kTextCases = std::to_array<TextCase>({
    // text                    bool   integer  double
    {"", false, 0, 0},
    {"YES", true, 0, 0},
    {"yes", true, 0, 0},
    {"NO", false, 0, 0},
    {"True", true, 0, 0},
    {"tomato", true, 0, 0},
    {"false", false, 0, 0},
    {"1", true, 1, 1},
    {"0", false, 0, 0},
    {"-1", true, -1, -1},
    {"+7", true, 7, 7},
    {"007", true, 7, 7},
    {"-000", false, 0, 0},
    {"0.5", false, 0, 0.5},
    {"23abc", true, 23, 23},
    {"abc23", false, 0, 0},
    {" \t\n42", true, 42, 42},
    {"\xC2\xA0"
     "42",
     true,
     42,
     42},
    {" Y", true, 0, 0},
    {"-Y", false, 0, 0},
    {"--1", false, 0, 0},
    {"- 1", false, 0, 0},
    {"-", false, 0, 0},
    {"1e3", true, 1, 1000},
    {"1e", true, 1, 1},
    {"1e+", true, 1, 1},
    {"1E-2x", true, 1, 0.01},
    {"1.5.5", true, 1, 1.5},
    {"1.", true, 1, 1},
    {".5", false, 0, 0.5},
    {".", false, 0, 0},
    {"e5", false, 0, 0},
    {"1,5", true, 1, 1},
    {"0x10", false, 0, 0},
    {"inf", false, 0, 0},
    {"nan", false, 0, 0},
    {"1e999", true, 1, kInfinite},
    {"-1e999", true, -1, -kInfinite},
    {"1e-999", true, 1, 0},
    {"9223372036854775807", true, kMost, 9223372036854775807.0},
    {"9223372036854775808", true, kMost, 9223372036854775808.0},
    {"18446744073709551615", true, kMost, 18446744073709551615.0},
    {"-9223372036854775809", true, kLeast, -9223372036854775809.0},
    {"\xD9\xA3", false, 0, 0}, // an Arabic-Indic three
});

INSTANTIATE_TEST_SUITE_P(Cases, StringValue, ::testing::ValuesIn(kTextCases));

TEST(StringValues, ReadsAMegabyteOfDigitsAtOnce)
{
    const QString digits(1'000'000, u'9');

    EXPECT_TRUE(boolValue(digits));
    EXPECT_EQ(integerValue(digits), kMost);
    EXPECT_EQ(doubleValue(digits), kInfinite);
    EXPECT_FALSE(boolValue(QString(1'000'000, u'0')));
}

} // namespace
} // namespace havrel
