// SPDX-License-Identifier: MIT
#include "cli/json_input.h"
#include "tests/support/program_run.h"

#include <QVariantMap>

#include <gtest/gtest.h>

#include <array>

namespace havrel::tests {
namespace {

struct JsonRow
{
    const char* label;
    QByteArrayList arguments;
    const char* json;
};

const std::array kRows = {
    JsonRow{"anchored",
            {"Library//Caches"},
            R"({"pattern":"Library//Caches","valid":true,"error":null,"errorInPattern":false,"absolute":false,)"
            R"("components":["Library","Caches"],"patternComponents":[1],"type":0,"depth":"0","effectiveDepth":"1",)"
            R"("canonical":"Library//Caches",)"
            R"("simple":{"anchor":"Library","pattern":"Caches","indefinite":false,"type":0}})"},
    JsonRow{"indefinite_regular_expression",
            {"//^x$/+:re"},
            R"({"pattern":"//^x$/+:re","valid":true,"error":null,"errorInPattern":false,"absolute":false,)"
            R"("components":["^x$"],"patternComponents":[0],"type":1,"depth":"18446744073709551615",)"
            R"("effectiveDepth":"18446744073709551615","canonical":"//^x$/+:re",)"
            R"("simple":{"anchor":"","pattern":"^x$","indefinite":true,"type":1}})"},
    JsonRow{"not_to_be_simplified",
            {"a//b/c/3"},
            R"({"pattern":"a//b/c/3","valid":true,"error":null,"errorInPattern":false,"absolute":false,)"
            R"("components":["a","b","c"],"patternComponents":[1,2],"type":0,"depth":"3","effectiveDepth":"5",)"
            R"("canonical":"a//b/c/3:glob","simple":null})"},
    JsonRow{"rooted",
            {"--rooted", "///x"},
            R"({"pattern":"///x","valid":true,"error":null,"errorInPattern":false,"absolute":true,)"
            R"("components":["x"],"patternComponents":[0],"type":0,"depth":"0","effectiveDepth":"0",)"
            R"("canonical":"///x","simple":{"anchor":"/","pattern":"x","indefinite":false,"type":0}})"},
    JsonRow{
        "simple_form",
        {"--anchor", "Users/work", "--pattern", "*.tmp"},
        R"({"pattern":"*.tmp","valid":true,"error":null,"errorInPattern":false,"absolute":false,)"
        R"("components":["Users","work","*.tmp"],"patternComponents":[2],"type":0,"depth":"0","effectiveDepth":"2",)"
        R"("canonical":"Users/work//*.tmp",)"
        R"("simple":{"anchor":"Users/work","pattern":"*.tmp","indefinite":false,"type":0}})"},
    JsonRow{"simple_form_indefinitely",
            {"--pattern=^a", "--type", "re", "--indefinitely"},
            R"({"pattern":"^a","valid":true,"error":null,"errorInPattern":false,"absolute":false,)"
            R"("components":["^a"],"patternComponents":[0],"type":1,"depth":"18446744073709551615",)"
            R"("effectiveDepth":"18446744073709551615","canonical":"//^a/+:re",)"
            R"("simple":{"anchor":"","pattern":"^a","indefinite":true,"type":1}})"},
};

class PatternCheck : public ::testing::TestWithParam<JsonRow>
{
};

TEST_P(PatternCheck, WritesEveryFactAsJSON)
{
    const RunResult result = run(QByteArrayList{"pattern", "check", "--json"} + GetParam().arguments);

    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output.toStdString(), std::string(GetParam().json) + '\n');
    EXPECT_EQ(result.errors, "");
}

INSTANTIATE_TEST_SUITE_P(Rows, PatternCheck, ::testing::ValuesIn(kRows), [](const auto& each) {
    return std::string(each.param.label);
});

QVariantMap verdict(const QByteArrayList& arguments, int status)
{
    const RunResult result = run(QByteArrayList{"pattern", "check", "--json"} + arguments);
    EXPECT_EQ(result.status, status) << arguments.join(' ').constData();
    return cli::readJson(result.output).value.toMap();
}

TEST(PatternCheckFaults, CarryThePatternsOwnMessage)
{
    struct Row
    {
        QByteArrayList arguments;
        const char* error;
        bool inPattern;
    };
    const std::array rows = {
        Row{{""}, "Incomplete pattern", false},
        Row{{"a///b"}, "Invalid /// encountered", false},
        Row{{"////x"}, "Too many leading /", false},
        Row{{"/x"}, "Absolute path not permitted here", false},
        Row{{"//"}, "No pattern defined", true},
        Row{{"//(/:re"}, "/(/ is not a valid regular expression", true},
        Row{{"--anchor", "/", "--pattern", "x"}, "Too many leading /", false},
        Row{{"--anchor", "a//b", "--pattern", "x"}, "Successive // is not allowed here", false},
        Row{{"--anchor", "a", "--pattern", "b/c"}, "Pattern cannot contain /", true},
        Row{{"--anchor", "a"}, "Incomplete pattern", true},
    };
    for (const Row& row : rows) {
        const QVariantMap found = verdict(row.arguments, 1);
        EXPECT_EQ(found.value(QStringLiteral("valid")), false);
        EXPECT_EQ(found.value(QStringLiteral("error")).toString().toStdString(), row.error);
        EXPECT_EQ(found.value(QStringLiteral("errorInPattern")).toBool(), row.inPattern) << row.error;
        EXPECT_EQ(found.value(QStringLiteral("canonical")), QStringLiteral(""));
    }
}

TEST(PatternCheckWords, SayWhetherAndWhyNot)
{
    const RunResult result = run({"pattern", "check", "//*.tmp", "//*.tmp/3", "a///b"});

    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output,
              "//*.tmp: valid\n//*.tmp/3: valid, usually written //*.tmp/3:glob\na///b: Invalid /// encountered\n");
    EXPECT_EQ(result.errors, "");
}

RunResult checked(const QByteArray& input, const QByteArrayList& options = {})
{
    return run(QByteArrayList{"pattern", "check"} + options, {.input = input});
}

TEST(PatternCheckInput, IsOnePatternALine)
{
    EXPECT_EQ(checked("//a\n\n//b").output, "//a: valid\n: Incomplete pattern\n//b: valid\n");
    EXPECT_EQ(checked("").output, "");
    EXPECT_EQ(checked("").status, 0);
    EXPECT_EQ(checked(" a \r\n").output, " a \\r: valid\n") << "nothing is trimmed";
}

TEST(PatternCheckInput, MayEndWithNULAndHoldNewlines)
{
    EXPECT_EQ(checked(QByteArray("//a\n\0//b", 8), {"--null"}).output, "//a\\n: valid\n//b: valid\n");
}

TEST(PatternCheckInput, MayHoldAnyByte)
{
    const RunResult result = checked(QByteArray("//a\xff\0b\n", 7), {"--json"});
    const QVariantMap found = cli::readJson(result.output).value.toMap();

    EXPECT_EQ(found.value(QStringLiteral("pattern")).toString(),
              QStringLiteral("//a") + QChar(0xDCFF) + QChar(0) + u'b');
}

TEST(PatternCheckInput, MayBeAMegabyte)
{
    for (const QByteArray& line : {QByteArray(1'000'000, '/'),
                                   "//" + QByteArray(1'000'000, 'a'),
                                   QByteArray("a/").repeated(500'000) + 'a',
                                   "//" + QByteArray(1'000'000, '[')}) {
        const RunResult result = checked(line + "\n//x\n");
        EXPECT_LE(result.status, 1);
        EXPECT_TRUE(result.output.endsWith("//x: valid\n"));
    }
}

} // namespace
} // namespace havrel::tests
