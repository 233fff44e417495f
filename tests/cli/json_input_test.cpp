// SPDX-License-Identifier: MIT
#include "cli/json_input.h"

#include "cli/json_output.h"
#include "foundation/description.h"
#include "platform/file_names.h"
#include "tests/support/outside_program.h"
#include "tests/support/spelled_value.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

namespace havrel::cli {
namespace {

struct ValidRow
{
    const char* label;
    const char* json;
    QVariant value;
};

QVariantMap object(const char* key, const QVariant& value)
{
    return {{QString::fromUtf8(key), value}};
}

const std::array kValid = {
    ValidRow{"null_value", " null ", nullObject()},
    ValidRow{"yes", "true", true},
    ValidRow{"no", "false", false},
    ValidRow{"zero", "0", 0LL},
    ValidRow{"least", "-9223372036854775808", std::numeric_limits<qlonglong>::min()},
    ValidRow{"most_signed", "9223372036854775807", std::numeric_limits<qlonglong>::max()},
    ValidRow{"first_unsigned", "9223372036854775808", 9223372036854775808ULL},
    ValidRow{"most_unsigned", "18446744073709551615", std::numeric_limits<qulonglong>::max()},
    ValidRow{"beyond_53_bits", "9007199254740993", 9007199254740993LL},
    ValidRow{"point", "1.0", 1.0},
    ValidRow{"exponent", "-25e-1", -2.5},
    ValidRow{"capital_exponent", "1E+2", 100.0},
    ValidRow{"text", "\"a\"", QStringLiteral("a")},
    ValidRow{"empty_text", "\"\"", QStringLiteral("")},
    ValidRow{"escapes", R"("\"\\\/\b\f\n\r\t")", QStringLiteral("\"\\/\b\f\n\r\t")},
    ValidRow{"unit", R"("\u00e9\uD83D\uDE00")", QString::fromUtf8("\xc3\xa9\xf0\x9f\x98\x80")},
    ValidRow{"plain_utf8", "\"\xc3\xa9\"", QString::fromUtf8("\xc3\xa9")},
    ValidRow{"lone_surrogate", R"("\udcff")", QString(QChar(0xDCFF))},
    ValidRow{"nul", R"("\u0000")", QString(QChar(0))},
    ValidRow{"byte_order_mark", "\"\xef\xbb\xbf\"", QString(QChar(0xFEFF))},
    ValidRow{"array", "[1,\n[ ],\"a\"]", QVariantList{1LL, QVariant(QVariantList()), QStringLiteral("a")}},
    ValidRow{"object", "{ \"a\" : {} }", object("a", QVariantMap())},
};

class JsonInput : public ::testing::TestWithParam<ValidRow>
{
};

TEST_P(JsonInput, KeepsValueAndKind)
{
    const JsonReading reading = readJson(GetParam().json);

    EXPECT_TRUE(reading.fault.isNull()) << reading.fault.toStdString();
    EXPECT_EQ(spelled(reading.value), spelled(GetParam().value));
}

INSTANTIATE_TEST_SUITE_P(Rows, JsonInput, ::testing::ValuesIn(kValid), [](const auto& each) {
    return std::string(each.param.label);
});

TEST(JsonInputFaults, NameWhatIsWrongAndWhere)
{
    struct Row
    {
        QByteArray json;
        const char* fault;
        qsizetype offset;
    };
    const std::array rows = {
        Row{"", "a value is expected", 0},
        Row{"  ", "a value is expected", 2},
        Row{"nul", "a value is expected", 0},
        Row{"{", "a key in quotes is expected", 1},
        Row{"{1:2}", "a key in quotes is expected", 1},
        Row{"{\"a\" 1}", "a colon is expected", 5},
        Row{"{\"a\":1,}", "a key in quotes is expected", 7},
        Row{"{\"a\":1 \"b\":2}", "a comma or the end of the object is expected", 7},
        Row{"{\"a\":1,\"a\":2}", "the same key twice", 10},
        Row{"[1", "a comma or the end of the array is expected", 2},
        Row{"[1,]", "a value is expected", 3},
        Row{"1 2", "something follows the value", 2},
        Row{"\"a", "a string does not end", 2},
        Row{"\"\\", "an unknown escape in a string", 2},
        Row{"\"\\x41\"", "an unknown escape in a string", 2},
        Row{"\"\\u12\"", "\\u wants four hexadecimal digits", 3},
        Row{"\"\\u-123\"", "\\u wants four hexadecimal digits", 3},
        Row{"\"a\nb\"", "a control character in a string", 2},
        Row{"01", "a number begins with a zero", 2},
        Row{"-", "a value is expected", 1},
        Row{"1.", "a value is expected", 2},
        Row{"1e", "a value is expected", 2},
        Row{"+1", "a value is expected", 0},
        Row{"NaN", "a value is expected", 0},
        Row{"18446744073709551616", "an integer of more than 64 bits", 20},
        Row{"-9223372036854775809", "an integer of more than 64 bits", 20},
        Row{"1e999", "a number out of the range of a double", 5},
        Row{"\"\xff\"", "not valid UTF-8", 0},
        Row{QByteArray("\0", 1), "a value is expected", 0},
    };
    for (const Row& row : rows) {
        const JsonReading reading = readJson(row.json);
        EXPECT_EQ(reading.fault.toStdString(), row.fault) << row.json.constData();
        EXPECT_EQ(reading.offset, row.offset) << row.json.constData();
        EXPECT_FALSE(reading.value.isValid());
    }
}

TEST(JsonInputFaults, IncludeNestingThatWouldEndTheStack)
{
    EXPECT_TRUE(readJson(QByteArray(128, '[') + QByteArray(128, ']')).fault.isNull());
    EXPECT_FALSE(readJson(QByteArray(1'000'000, '[')).fault.isNull());
}

TEST(JsonOutput, WritesTextsThatReadBackAsTheyWere)
{
    QString all;
    for (int unit = 0; unit <= 0xFFFF; ++unit)
        all += QChar(static_cast<char16_t>(unit));
    const QByteArray json = jsonText(all);

    EXPECT_TRUE(json.isValidUtf8());
    EXPECT_FALSE(json.contains('\n'));
    EXPECT_EQ(readJson(json).value.toString(), all);
}

TEST(JsonOutput, CannotSteerATerminal)
{
    const QByteArray json = jsonText(u"\u001b\u007f\u009b31m\u061c\u200f\u202e\u2028\u2066\ufeff\u00e9\u200d");

    EXPECT_EQ(json, "\"\\u001b\\u007f\\u009b31m\\u061c\\u200f\\u202e\\u2028\\u2066\\ufeff\xc3\xa9\xe2\x80\x8d\"");
}

TEST(JsonOutput, WritesNamesThatPythonTurnsBackIntoTheirBytes)
{
    QByteArray name;
    for (int byte = 1; byte < 256; ++byte)
        name += static_cast<char>(byte);
    const QByteArray json = jsonText(platform::textOfFileName(name));

    EXPECT_EQ(outputOfPython("import json, sys\n"
                             "text = json.loads(sys.stdin.buffer.read())\n"
                             "sys.stdout.buffer.write(text.encode('utf-8', 'surrogateescape'))",
                             json),
              name);
}

TEST(JsonOutput, WritesRealsThatStayReals)
{
    for (const double value : {0.0, -0.0, 1.0, 0.1, 1e300, 5e-324, 9007199254740993.0, 123456789012345680.0}) {
        const QVariant again = readJson(jsonReal(value)).value;
        EXPECT_EQ(again.typeId(), QMetaType::Double) << jsonReal(value).constData();
        EXPECT_EQ(again.toDouble(), value);
        EXPECT_EQ(std::signbit(again.toDouble()), std::signbit(value));
    }
}

TEST(JsonOutput, PutsMembersInTheOrderInWhichTheyCome)
{
    EXPECT_EQ(JsonObject().add(u"b", "1").add(u"a", kJsonNull).add(u"\"", jsonBool(true)).take(),
              R"({"b":1,"a":null,"\"":true})");
    EXPECT_EQ(JsonObject().take(), "{}");
    EXPECT_EQ(jsonTexts({QStringLiteral("a"), QStringLiteral("b")}), R"(["a","b"])");
    EXPECT_EQ(jsonTexts({}), "[]");
}

} // namespace
} // namespace havrel::cli
