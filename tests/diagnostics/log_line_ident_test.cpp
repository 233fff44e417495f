// SPDX-License-Identifier: MIT
#include "diagnostics/log_line_ident.h"

#include "diagnostics/log_line_pin.h"
#include "diagnostics/root_log_line.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace havrel {
namespace {

LogLineIdentPtr lineOf(const char* text)
{
    return LogLineIdent::logLineIdentifierFromString(QString::fromLatin1(text));
}

std::vector<std::uint64_t> chainOf(const LogLineIdentPtr& line)
{
    std::vector<std::uint64_t> chain;
    for (const LogLineIdent* each = line.get(); each; each = each->parent().get())
        chain.insert(chain.begin(), each->sequence());
    return chain;
}

struct ParseRow
{
    const char* text;
    std::vector<std::uint64_t> chain;
};

TEST(LogLineIdent, ReadsAnyTextAsAChain)
{
    const std::vector<ParseRow> rows{
        {"", {}},
        {"6", {6}},
        {"6.3", {6, 3}},
        {"6..3", {6, 0, 3}},
        {"6.3.", {6, 3}},
        {"6.3..", {6, 3, 0}},
        {".", {0}},
        {"..", {0, 0}},
        {".6", {0, 6}},
        {"006", {6}},
        {"6.a", {6, 49}},
        {"6./", {6, 18446744073709551615U}},
        {"18446744073709551615", {18446744073709551615U}},
        {"18446744073709551617", {1}},
        {" 6", {18446744073709551462U}},
    };
    for (const ParseRow& row : rows)
        EXPECT_EQ(chainOf(lineOf(row.text)), row.chain) << row.text;
    EXPECT_EQ(lineOf(""), nullptr);
}

TEST(LogLineIdent, TakesTheCodeOfACharacterBeyondASCII)
{
    EXPECT_EQ(LogLineIdent::logLineIdentifierFromString(QStringLiteral("\u20ac"))->sequence(), 0x20ACU - '0');
}

TEST(LogLineIdent, WritesWhatItReads)
{
    for (const char* text : {"0", "6", "6.3", "6.0.3", "6.73946250.4312.17.2", "18446744073709551615.1"}) {
        EXPECT_EQ(lineOf(text)->description(), QLatin1StringView(text));
        QString appended = QStringLiteral("in ");
        lineOf(text)->appendIdentifierToString(appended);
        EXPECT_EQ(appended, QStringLiteral("in ") + QLatin1StringView(text));
    }
}

TEST(LogLineIdent, KnowsItsPlaceInTheChain)
{
    const auto line = lineOf("6.73946250.4312.17.2");
    EXPECT_EQ(line->depth(), 4U);
    EXPECT_EQ(line->application(), 6U);
    EXPECT_EQ(line->sequence(), 2U);
    EXPECT_EQ(line->parent()->description(), QStringLiteral("6.73946250.4312.17"));
    EXPECT_EQ(lineOf("6")->depth(), 0U);
    EXPECT_EQ(lineOf("6")->parent(), nullptr);
}

TEST(LogLineIdent, FindsTheAncestorAtADepthAndItselfWhenItIsNotDeeper)
{
    const auto line = lineOf("6.5.4");
    EXPECT_EQ(line->parentIdentifierWithDepth(0)->description(), QStringLiteral("6"));
    EXPECT_EQ(line->parentIdentifierWithDepth(1)->description(), QStringLiteral("6.5"));
    EXPECT_EQ(line->parentIdentifierWithDepth(2), line);
    EXPECT_EQ(line->parentIdentifierWithDepth(9), line);
}

TEST(LogLineIdent, NumbersItsChildrenFromOne)
{
    const auto line = lineOf("6.5");
    EXPECT_EQ(line->count(), 0U);
    EXPECT_EQ(line->next()->description(), QStringLiteral("6.5.1"));
    EXPECT_EQ(line->next()->description(), QStringLiteral("6.5.2"));
    EXPECT_EQ(line->count(), 2U);
    EXPECT_EQ(line->next()->parent(), line);
}

TEST(LogLineIdent, NumbersItsChildrenOnceWhateverThreadAsks)
{
    const auto line = lineOf("6");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&line] {
            for (int n = 0; n < 1000; ++n)
                (void)line->next();
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(line->count(), 4000U);
}

TEST(LogLineIdent, RemembersTheClassificationsBelowIt)
{
    const auto line = lineOf("6");
    line->noteClassification(LogClassification::Failure);
    line->noteClassification(LogClassification::Plain);
    line->noteClassification(LogClassification::Preferred);
    EXPECT_EQ(line->classifications(), (1U << 5) | 1U);
}

struct OrderRow
{
    const char* left;
    const char* right;
    std::strong_ordering order;
};

TEST(LogLineIdent, OrdersByDepthThenFromTheTop)
{
    const std::vector<OrderRow> rows{
        {"6", "6", std::strong_ordering::equal},
        {"6", "7", std::strong_ordering::less},
        {"7.1", "6.3.1", std::strong_ordering::less},
        {"6.3", "6", std::strong_ordering::greater},
        {"6.3.9", "6.4.1", std::strong_ordering::less},
        {"7.1.1", "6.9.9", std::strong_ordering::greater},
        {"6.3.1", "6.3.2", std::strong_ordering::less},
        {"9", "18446744073709551615", std::strong_ordering::less},
        {"6.0.3", "6..3", std::strong_ordering::equal},
    };
    for (const OrderRow& row : rows) {
        EXPECT_TRUE(lineOf(row.left)->compare(*lineOf(row.right)) == row.order) << row.left << " ? " << row.right;
        const auto reverse = 0 <=> lineOf(row.right)->compare(*lineOf(row.left));
        EXPECT_TRUE(lineOf(row.left)->compare(*lineOf(row.right)) == reverse) << row.left << " ? " << row.right;
        EXPECT_EQ(lineOf(row.left)->isEqual(*lineOf(row.right)), row.order == std::strong_ordering::equal);
    }
}

TEST(LogLineIdent, ContainsItselfAndItsDescendants)
{
    const auto line = lineOf("6.5");
    EXPECT_TRUE(line->containsIdentifier(*line));
    EXPECT_TRUE(line->containsIdentifier(*lineOf("6.5")));
    EXPECT_TRUE(line->containsIdentifier(*lineOf("6.5.1.2")));
    EXPECT_FALSE(line->containsIdentifier(*lineOf("6")));
    EXPECT_FALSE(line->containsIdentifier(*lineOf("6.6.1")));
    EXPECT_FALSE(line->containsIdentifier(*lineOf("7.5")));
}

struct HashRow
{
    const char* text;
    std::uint64_t hash;
};

TEST(LogLineIdent, HashesTheWholeChain)
{
    const std::vector<HashRow> rows{
        {"6", 0x6000000000018},
        {"6.3", 0x3c0000000000c},
        {"6.0.3", 0x318000000000c},
        {"6.73946250.4312.17.2", 0x3469056000000008},
        {"6.73946250.4312", 0x1a49580000004360},
        {"6.73946250.4312.1", 0xa3482b0000000004},
        {"1.2.3.4.5.6.7.8.9.10.11.12.13.14.15.16.17.18", 0x1247795303eb50},
    };
    for (const HashRow& row : rows)
        EXPECT_EQ(lineOf(row.text)->hash(), row.hash) << row.text;
}

TEST(LogLineIdent, LivesAndDiesWithMillionsOfAncestors)
{
    const auto line = LogLineIdent::logLineIdentifierFromString(QString(500'000, u'.'));
    EXPECT_EQ(line->depth(), 499'999U);
    EXPECT_TRUE(line->isEqual(*line));
    EXPECT_EQ(line->description().size(), 2 * 500'000 - 1);
}

TEST(LogLinePin, TakesTheIdentityOfWhatItPins)
{
    const auto line = lineOf("6.5");
    const auto pin = line->pinned();
    EXPECT_EQ(pin->description(), QStringLiteral("6.5"));
    EXPECT_EQ(pin->parent(), line->parent());
    EXPECT_TRUE(pin->isEqual(*line));
    EXPECT_TRUE(line->isEqual(*pin));
    EXPECT_EQ(pin->hash(), line->hash());
    EXPECT_NE(dynamic_cast<LogLinePin*>(pin.get()), nullptr);
}

TEST(LogLinePin, IsItsOwnNextAndItsOwnPin)
{
    const auto pin = lineOf("6.5")->pinned();
    EXPECT_EQ(pin->next(), pin);
    EXPECT_EQ(pin->pinned(), pin);
    EXPECT_EQ(pin->count(), 0U);
}

struct StampRow
{
    platform::LocalTime local;
    std::uint64_t stamp;
};

TEST(RootLogLine, StampsTheDayInHundredths)
{
    const std::vector<StampRow> rows{
        {{.year = 1970, .month = 1, .day = 1}, 71916300},
        {{.year = 2000, .month = 1, .day = 1, .hour = 12}, 73012050},
        {{.year = 2000, .month = 1, .day = 1, .hour = 0, .minute = 13}, 73012000},
        {{.year = 2000, .month = 1, .day = 1, .hour = 0, .minute = 14}, 73012001},
        {{.year = 2024, .month = 2, .day = 29, .hour = 23, .minute = 59}, 73894599},
        {{.year = 2024, .month = 2, .day = 29, .hour = 23, .minute = 58}, 73894599},
        {{.year = 2025, .month = 1, .day = 1}, 73925200},
        {{.year = 2025, .month = 7, .day = 30, .hour = 12, .minute = 34}, 73946252},
        {{.year = 2026, .month = 6, .day = 15, .hour = 7, .minute = 12}, 73978230},
        {{.year = 1, .month = 1, .day = 1}, 100},
    };
    for (const StampRow& row : rows)
        EXPECT_EQ(dayStampAt(row.local), row.stamp);
}

TEST(RootLogLine, NamesApplicationDayAndProcess)
{
    const auto root = rootLogLineFor({.year = 2025, .month = 7, .day = 30, .hour = 12}, 4312);
    EXPECT_EQ(root->description(), QStringLiteral("6.73946250.4312"));
    EXPECT_EQ(root->hash(), 0x1a49580000004360U);
    EXPECT_EQ(root->next()->hash(), 0xa3482b0000000004U);
}

} // namespace
} // namespace havrel
