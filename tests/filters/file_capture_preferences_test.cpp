// SPDX-License-Identifier: MIT
#include "filters/file_capture_preferences.h"

#include "filters/pattern_filter_def.h"
#include "foundation/property_list.h"
#include "tests/support/spelled_value.h"

#include <QDateTime>

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <limits>

namespace havrel {
namespace {

using Preferences = FileCapturePreferences;

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

QStringList texts(std::initializer_list<const char*> utf8)
{
    QStringList result;
    for (const char* each : utf8)
        result.append(text(each));
    return result;
}

PatternFilterDefs definitions(std::initializer_list<const char*> lines)
{
    PatternFilterDefs result;
    for (const QString& line : texts(lines))
        result.append(std::make_shared<PatternFilterDef>(line));
    return result;
}

/// A property-list value as it is written in a row.
struct Value
{
    Value(const char* utf8)
        : value(text(utf8))
    {
    }
    Value(std::initializer_list<const char*> lines)
        : value(QVariantList())
    {
        value = QVariant(texts(lines)).toList();
    }
    template<class T>
    Value(const T& other)
        : value(QVariant::fromValue(other))
    {
    }

    QVariant value;
};

/// A stored dictionary as it is written in a row.
struct Stored : QVariantMap
{
    Stored(std::initializer_list<std::pair<const char*, Value>> entries)
    {
        for (const auto& [key, each] : entries)
            insert(text(key), each.value);
    }
};

// ---- What is stored and said

struct StoredRow
{
    const char* label;
    std::function<void(Preferences&)> change; // of the defaults
    Stored stored;
    const char* described;
};

const std::array kStoredRows = {
    StoredRow{"normal", [](Preferences&) {}, {}, "normal"},
    StoredRow{
        "exclude", [](Preferences& p) { p.option = CaptureOption::Exclude; }, {{"capture", "exclude"}}, "excluded"},
    StoredRow{"exclude_from_all",
              [](Preferences& p) {
                  p.option = CaptureOption::Exclude;
                  p.allArchives = true;
              },
              {{"capture", "exclude"}, {"all", true}},
              "excluded from all captures"},
    StoredRow{"exclude_contents",
              [](Preferences& p) { p.option = CaptureOption::ExcludeContents; },
              {{"capture", "exclude"}, {"contents", true}},
              "exclude contents"},
    StoredRow{"exclude_contents_from_all",
              [](Preferences& p) {
                  p.option = CaptureOption::ExcludeContents;
                  p.allArchives = true;
              },
              {{"capture", "exclude"}, {"contents", true}, {"all", true}},
              "exclude contents from all captures"},
    StoredRow{"ignore",
              [](Preferences& p) { p.option = CaptureOption::IgnoreChanges; },
              {{"capture", "ignore"}, {"duration", 23LL}, {"scale", 1ULL}},
              "ignore changes for 23 hours after last capture"},
    StoredRow{"ignore_between_too",
              [](Preferences& p) {
                  p.option = CaptureOption::IgnoreChanges;
                  p.ignoreBetween = true;
              },
              {{"capture", "ignore"}, {"duration", 23LL}, {"scale", 1ULL}, {"from", 540ULL}, {"to", 1020ULL}},
              "ignore changes for 23 hours after last capture and between 09:00 and 17:00"},
    StoredRow{"ignore_between_only",
              [](Preferences& p) {
                  p.option = CaptureOption::IgnoreChanges;
                  p.ignoreBetween = true;
                  p.ignoreDuration = 0;
                  p.ignoreFromMinute = 0;
                  p.ignoreToMinute = 1;
              },
              {{"capture", "ignore"}, {"duration", 0LL}, {"scale", 1ULL}, {"from", 0ULL}, {"to", 1ULL}},
              "ignore changes between 00:00 and 00:01"},
    StoredRow{"ignore_by_nothing_keeps_its_blank",
              [](Preferences& p) {
                  p.option = CaptureOption::IgnoreChanges;
                  p.ignoreBetween = true;
                  p.ignoreDuration = 0;
                  p.ignoreFromMinute = 0;
                  p.ignoreToMinute = 0;
              },
              {{"capture", "ignore"}, {"duration", 0LL}, {"scale", 1ULL}, {"from", 0ULL}, {"to", 0ULL}},
              "ignore changes "},
    StoredRow{"ignore_with_midnights_says_no_and",
              [](Preferences& p) {
                  p.option = CaptureOption::IgnoreChanges;
                  p.ignoreBetween = true;
                  p.ignoreDuration = 1;
                  p.ignoreFromMinute = 0;
                  p.ignoreToMinute = 0;
              },
              {{"capture", "ignore"}, {"duration", 1LL}, {"scale", 1ULL}, {"from", 0ULL}, {"to", 0ULL}},
              "ignore changes for 1 hour after last capture"},
    StoredRow{"ignore_does_not_say_all",
              [](Preferences& p) {
                  p.option = CaptureOption::IgnoreChanges;
                  p.allArchives = true;
              },
              {{"capture", "ignore"}, {"duration", 23LL}, {"scale", 1ULL}},
              "ignore changes for 23 hours after last capture"},
    StoredRow{"minutes_beyond_a_day_are_shown_within_it",
              [](Preferences& p) {
                  p.option = CaptureOption::IgnoreChanges;
                  p.ignoreBetween = true;
                  p.ignoreDuration = 0;
                  p.ignoreFromMinute = 1440 + 61;
                  p.ignoreToMinute = 1439;
              },
              {{"capture", "ignore"}, {"duration", 0LL}, {"scale", 1ULL}, {"from", 1501ULL}, {"to", 1439ULL}},
              "ignore changes between 01:01 and 23:59"},
    StoredRow{"scrape",
              [](Preferences& p) { p.option = CaptureOption::Scrape; },
              {{"capture", "scrape"}, {"duration", 31LL}, {"scale", 2ULL}},
              "scrape 31 days after being captured"},
    StoredRow{"scrape_at_once",
              [](Preferences& p) {
                  p.option = CaptureOption::Scrape;
                  p.scrapeImmediately = true;
              },
              {{"capture", "scrape"}},
              "scrape"},
    StoredRow{"scrape_contents",
              [](Preferences& p) { p.option = CaptureOption::ScrapeContents; },
              {{"capture", "scrape"}, {"contents", true}, {"duration", 31LL}, {"scale", 2ULL}},
              "scrape contents 31 days after being captured"},
    StoredRow{"scrape_contents_at_once",
              [](Preferences& p) {
                  p.option = CaptureOption::ScrapeContents;
                  p.scrapeImmediately = true;
              },
              {{"capture", "scrape"}, {"contents", true}},
              "scrape contents"},
    StoredRow{"a_scale_without_unit",
              [](Preferences& p) {
                  p.option = CaptureOption::Scrape;
                  p.scrapeScale = static_cast<DurationScale>(9);
              },
              {{"capture", "scrape"}, {"duration", 31LL}, {"scale", 9ULL}},
              "scrape 31 after being captured"},
    StoredRow{"six_is_invalid",
              [](Preferences& p) { p.option = static_cast<CaptureOption>(6); },
              {{"capture", "invalid"}},
              "unrecognized capture preferences"},
    StoredRow{"normal_with_patterns",
              [](Preferences& p) {
                  p.setExcludeFilterDefs(definitions({"//*.tmp", "Library//Caches"}));
              },
              {{"patterns", {"//*.tmp", "Library//Caches"}}},
              "normal, excluding //*.tmp, Library//Caches"},
    StoredRow{"ignore_with_patterns",
              [](Preferences& p) {
                  p.option = CaptureOption::IgnoreChanges;
                  p.ignoreDuration = 0;
                  p.setExcludeFilterDefs(definitions({"//x"}));
              },
              {{"capture", "ignore"}, {"duration", 0LL}, {"scale", 1ULL}, {"patterns", {"//x"}}},
              "ignore changes , excluding //x"},
    StoredRow{"invalid_with_patterns_stores_them_and_says_nothing_of_them",
              [](Preferences& p) {
                  p.option = static_cast<CaptureOption>(4294967295U);
                  p.setExcludeFilterDefs(definitions({"//x"}));
              },
              {{"capture", "invalid"}, {"patterns", {"//x"}}},
              "unrecognized capture preferences"},
    StoredRow{"invalid_patterns_are_left_out",
              [](Preferences& p) {
                  p.setExcludeFilterDefs(definitions({"//a/", "", "/x", "Users//*.log/0:glob"}));
              },
              {{"patterns", {"Users//*.log"}}},
              "normal, excluding Users//*.log"},
    StoredRow{"only_invalid_patterns_are_none",
              [](Preferences& p) {
                  p.setExcludeFilterDefs(definitions({"//a/", "/x"}));
              },
              {},
              "normal"},
};

class FileCapturePreferencesStored : public ::testing::TestWithParam<StoredRow>
{
};

TEST_P(FileCapturePreferencesStored, GivesTheDictionaryAndTheWords)
{
    Preferences preferences;
    GetParam().change(preferences);

    EXPECT_EQ(spelled(preferences.properties()), spelled(QVariantMap(GetParam().stored)));
    EXPECT_EQ(preferences.localizedDescription(), text(GetParam().described));
}

INSTANTIATE_TEST_SUITE_P(Rows, FileCapturePreferencesStored, ::testing::ValuesIn(kStoredRows), [](const auto& each) {
    return std::string(each.param.label);
});

// ---- What is read

struct ReadRow
{
    const char* label;
    Stored stored;
    std::function<void(Preferences&)> change; // of the defaults, to what must be read
};

const std::array kReadRows = {
    ReadRow{"nothing", {}, [](Preferences&) {}},
    ReadRow{"all_is_read_for_exclude",
            {{"capture", "exclude"}, {"all", true}},
            [](Preferences& p) {
                p.option = CaptureOption::Exclude;
                p.allArchives = true;
            }},
    ReadRow{"all_is_not_read_otherwise", {{"all", true}}, [](Preferences&) {}},
    ReadRow{"ignore_without_details_is_zero",
            {{"capture", "ignore"}},
            [](Preferences& p) {
                p.option = CaptureOption::IgnoreChanges;
                p.ignoreDuration = 0;
                p.ignoreScale = DurationScale::Minutes;
            }},
    ReadRow{"from_alone_means_between_and_to_is_zero",
            {{"capture", "ignore"}, {"duration", 5LL}, {"scale", 2LL}, {"from", 7LL}},
            [](Preferences& p) {
                p.option = CaptureOption::IgnoreChanges;
                p.ignoreDuration = 5;
                p.ignoreScale = DurationScale::Days;
                p.ignoreBetween = true;
                p.ignoreFromMinute = 7;
                p.ignoreToMinute = 0;
            }},
    ReadRow{"to_alone_is_not_read",
            {{"capture", "ignore"}, {"to", 7LL}},
            [](Preferences& p) {
                p.option = CaptureOption::IgnoreChanges;
                p.ignoreDuration = 0;
                p.ignoreScale = DurationScale::Minutes;
            }},
    ReadRow{"scrape_without_duration_is_at_once_and_keeps_the_defaults",
            {{"capture", "scrape"}, {"scale", 5LL}},
            [](Preferences& p) {
                p.option = CaptureOption::Scrape;
                p.scrapeImmediately = true;
            }},
    ReadRow{"scrape_with_duration_and_no_scale",
            {{"capture", "scrape"}, {"duration", 3LL}},
            [](Preferences& p) {
                p.option = CaptureOption::Scrape;
                p.scrapeDuration = 3;
                p.scrapeScale = DurationScale::Minutes;
            }},
    ReadRow{"contents_alone_is_one_more_than_normal",
            {{"contents", true}},
            [](Preferences& p) { p.option = CaptureOption::Exclude; }},
    ReadRow{"ignore_with_contents_is_scrape",
            {{"capture", "ignore"}, {"contents", true}},
            [](Preferences& p) {
                p.option = CaptureOption::Scrape;
                p.ignoreDuration = 0;
                p.ignoreScale = DurationScale::Minutes;
            }},
    ReadRow{"contents_may_be_text",
            {{"capture", "exclude"}, {"contents", "YES"}},
            [](Preferences& p) { p.option = CaptureOption::ExcludeContents; }},
    ReadRow{"invalid_is_normal", {{"capture", "invalid"}}, [](Preferences&) {}},
    ReadRow{"capture_is_case_sensitive", {{"capture", "Exclude"}}, [](Preferences&) {}},
    ReadRow{"capture_that_is_no_text", {{"capture", 1LL}}, [](Preferences&) {}},
    ReadRow{"text_is_a_number_where_signed_and_nothing_where_unsigned",
            {{"capture", "ignore"}, {"duration", "23"}, {"scale", "2"}, {"from", "60"}, {"to", "120"}},
            [](Preferences& p) {
                p.option = CaptureOption::IgnoreChanges;
                p.ignoreDuration = 23;
                p.ignoreScale = DurationScale::Minutes;
                p.ignoreBetween = true;
                p.ignoreFromMinute = 0;
                p.ignoreToMinute = 0;
            }},
    ReadRow{"scale_keeps_the_low_32_bits",
            {{"capture", "scrape"}, {"duration", -1LL}, {"scale", 0x1'0000'0003LL}},
            [](Preferences& p) {
                p.option = CaptureOption::Scrape;
                p.scrapeDuration = -1;
                p.scrapeScale = DurationScale::Weeks;
            }},
    ReadRow{"containers_and_dates_count_as_nothing",
            {{"capture", "ignore"},
             {"duration", QVariantList{1}},
             {"scale", QVariantMap{}},
             {"contents", QDateTime::fromSecsSinceEpoch(1, Qt::UTC)},
             {"from", QByteArray("540")}},
            [](Preferences& p) {
                p.option = CaptureOption::IgnoreChanges;
                p.ignoreDuration = 0;
                p.ignoreScale = DurationScale::Minutes;
                p.ignoreBetween = true;
                p.ignoreFromMinute = 0;
                p.ignoreToMinute = 0;
            }},
};

class FileCapturePreferencesRead : public ::testing::TestWithParam<ReadRow>
{
};

TEST_P(FileCapturePreferencesRead, TakesEachValueAsTheAdditionsDo)
{
    const Preferences read(GetParam().stored);
    Preferences expected;
    GetParam().change(expected);

    EXPECT_EQ(read.option, expected.option);
    EXPECT_EQ(read.allArchives, expected.allArchives);
    EXPECT_EQ(read.ignoreBetween, expected.ignoreBetween);
    EXPECT_EQ(read.ignoreDuration, expected.ignoreDuration);
    EXPECT_EQ(read.ignoreScale, expected.ignoreScale);
    EXPECT_EQ(read.ignoreFromMinute, expected.ignoreFromMinute);
    EXPECT_EQ(read.ignoreToMinute, expected.ignoreToMinute);
    EXPECT_EQ(read.scrapeImmediately, expected.scrapeImmediately);
    EXPECT_EQ(read.scrapeDuration, expected.scrapeDuration);
    EXPECT_EQ(read.scrapeScale, expected.scrapeScale);
}

INSTANTIATE_TEST_SUITE_P(Rows, FileCapturePreferencesRead, ::testing::ValuesIn(kReadRows), [](const auto& each) {
    return std::string(each.param.label);
});

TEST(FileCapturePreferences, HaveTheDefaultsOfTheWindow)
{
    const Preferences preferences;

    EXPECT_EQ(preferences.option, CaptureOption::Normal);
    EXPECT_FALSE(preferences.allArchives);
    EXPECT_FALSE(preferences.ignoreBetween);
    EXPECT_FALSE(preferences.scrapeImmediately);
    EXPECT_EQ(preferences.ignoreDuration, 23);
    EXPECT_EQ(static_cast<quint32>(preferences.ignoreScale), 1U);
    EXPECT_EQ(preferences.ignoreFromMinute, 540U);
    EXPECT_EQ(preferences.ignoreToMinute, 1020U);
    EXPECT_EQ(preferences.scrapeDuration, 31);
    EXPECT_EQ(static_cast<quint32>(preferences.scrapeScale), 2U);
    EXPECT_EQ(preferences.excludeFilterDefs(), std::nullopt);
    EXPECT_EQ(preferences.excludeFiltersAsStrings(), std::nullopt);
}

TEST(FileCapturePreferences, HaveAnEmptyListOfDefinitionsOnceRead)
{
    const Preferences preferences{QVariantMap()};

    ASSERT_TRUE(preferences.excludeFilterDefs().has_value());
    EXPECT_TRUE(preferences.excludeFilterDefs()->isEmpty());
    EXPECT_EQ(preferences.excludeFiltersAsStrings(), std::nullopt);
}

TEST(FileCapturePreferences, DropThePatternsThatAnItemCannotHave)
{
    QVariantList lines = QVariant(texts({"//*.tmp", "/absolute", "//a/", "", "Library//Caches"})).toList();
    lines << 5 << QByteArray("//y");
    const Preferences preferences(Stored{{"patterns", lines}});

    EXPECT_EQ(preferences.excludeFiltersAsStrings(), texts({"//*.tmp", "Library//Caches"}));
    EXPECT_TRUE(preferences.excludeFilterDefs()->constFirst()->simple()) << "read definitions are simplified";
}

TEST(FileCapturePreferences, SayTheSameOfPatternsBeforeAndAfterTheirDefinitionsAreMade)
{
    const QStringList lines = texts({"//*.tmp",
                                     "a//b//c/+",
                                     "//(/:re",
                                     "x//5",
                                     "//5/0",
                                     "",
                                     "/x",
                                     "///x",
                                     "//a/7:regex",
                                     "Users/work//*.log/0:glob",
                                     "a///b",
                                     " ",
                                     "//^x$/3:re"});
    const Preferences preferences(Stored{{"patterns", QVariant(lines).toList()}});
    const auto before = preferences.excludeFiltersAsStrings();
    const Preferences copy = preferences;
    const auto count = preferences.excludeFilterDefs()->size();

    ASSERT_TRUE(before.has_value());
    EXPECT_EQ(before->size(), count);
    EXPECT_EQ(preferences.excludeFiltersAsStrings(), before);
    EXPECT_EQ(copy.excludeFiltersAsStrings(), before);
    EXPECT_EQ(before,
              texts({"//*.tmp", "a//b//c/+", "x//5:glob", "//5", "//a/7:re", "Users/work//*.log", " ", "//^x$/3:re"}));
}

TEST(FileCapturePreferences, ForgetTheLinesThatWereReadWhenDefinitionsAreSet)
{
    Preferences preferences(Stored{{"patterns", {"//a"}}});
    preferences.setExcludeFilterDefs(definitions({"//b"}));
    EXPECT_EQ(preferences.excludeFiltersAsStrings(), texts({"//b"}));
    preferences.setExcludeFilterDefs(std::nullopt);
    EXPECT_EQ(preferences.excludeFilterDefs(), std::nullopt);
    EXPECT_EQ(preferences.excludeFiltersAsStrings(), std::nullopt);
}

TEST(FileCapturePreferences, TakeNoPatternsFromWhatIsNoList)
{
    for (const Value& value : {Value("//x"), Value(1), Value(QVariantMap(Stored{{"a", "//x"}})), Value(nullptr)})
        EXPECT_EQ(Preferences(Stored{{"patterns", value}}).excludeFiltersAsStrings(), std::nullopt);
}

// Such a pattern changes its meaning on the way through the attribute, as other programs write it too.
TEST(FileCapturePreferences, StoreTheCanonicalLineEvenWhereItReadsBackDifferently)
{
    Preferences preferences;
    preferences.setExcludeFilterDefs(definitions({"//5/0", "//a/5/0"}));
    const Preferences again(preferences.properties());

    EXPECT_EQ(preferences.excludeFiltersAsStrings(), texts({"//5", "//a/5"}));
    EXPECT_EQ(again.excludeFiltersAsStrings(), texts({"//a/5:glob"}));
}

TEST(FileCapturePreferences, ReadBackEveryOptionThatTheyStore)
{
    for (const quint32 number : {0U, 1U, 2U, 3U, 4U, 5U}) {
        Preferences preferences;
        preferences.option = static_cast<CaptureOption>(number);
        EXPECT_EQ(static_cast<quint32>(Preferences(preferences.properties()).option), number);
    }
}

TEST(FileCapturePreferences, TakeTheSizesThatOtherWritersMake)
{
    const std::array<qsizetype, 4> sizes = {62, 76, 88, 102};
    const std::array options = {CaptureOption::Exclude,
                                CaptureOption::ExcludeContents,
                                CaptureOption::IgnoreChanges,
                                CaptureOption::ScrapeContents};
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        Preferences preferences;
        preferences.option = options[i];
        EXPECT_EQ(binaryPropertyList(preferences.properties()).bytes.size(), sizes[i]);
    }
}

TEST(FileCapturePreferences, DescribeMinutesBeyondAllDates)
{
    Preferences preferences;
    preferences.option = CaptureOption::IgnoreChanges;
    preferences.ignoreBetween = true;
    preferences.ignoreDuration = 0;
    preferences.ignoreFromMinute = std::numeric_limits<quint64>::max();

    EXPECT_TRUE(preferences.localizedDescription().endsWith(QStringLiteral(" and 17:00")));
}

} // namespace
} // namespace havrel
