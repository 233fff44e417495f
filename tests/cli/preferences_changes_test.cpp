// SPDX-License-Identifier: MIT
#include "cli/preferences_changes.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>

namespace havrel::cli {
namespace {

using Preferences = FileCapturePreferences;
using Changes = PreferencesChanges;

Preferences with(CaptureOption option)
{
    Preferences preferences{QVariantMap()};
    preferences.option = option;
    return preferences;
}

const auto kWork = PartOfDay{540, 1020};

struct ChangeRow
{
    const char* label;
    CaptureOption before;
    std::function<void(Changes&)> name;
    const char* after; // in words; null: refused
};

const std::array kChanges = {
    ChangeRow{"what_is_not_named_stays",
              CaptureOption::IgnoreChanges,
              [](Changes& c) { c.addedPatterns << QStringLiteral("//x"); },
              "ignore changes for 23 hours after last capture, excluding //x"},
    ChangeRow{"exclude", CaptureOption::Normal, [](Changes& c) { c.option = CaptureOption::Exclude; }, "excluded"},
    ChangeRow{
        "all_archives", CaptureOption::Exclude, [](Changes& c) { c.allArchives = true; }, "excluded from all captures"},
    ChangeRow{
        "all_archives_of_a_normal_item", CaptureOption::Normal, [](Changes& c) { c.allArchives = true; }, nullptr},
    ChangeRow{
        "not_all_archives_of_a_normal_item", CaptureOption::Normal, [](Changes& c) { c.allArchives = false; }, nullptr},
    ChangeRow{"begins_to_be_ignored",
              CaptureOption::Normal,
              [](Changes& c) { c.option = CaptureOption::IgnoreChanges; },
              "ignore changes for 23 hours after last capture"},
    ChangeRow{"begins_to_be_ignored_between",
              CaptureOption::Normal,
              [](Changes& c) {
                  c.option = CaptureOption::IgnoreChanges;
                  c.ignoreBetween = {true, kWork};
              },
              "ignore changes between 09:00 and 17:00"},
    ChangeRow{"begins_to_be_ignored_for_and_between",
              CaptureOption::Scrape,
              [](Changes& c) {
                  c.option = CaptureOption::IgnoreChanges;
                  c.ignoreFor = {true, Duration{2, DurationScale::Days}};
                  c.ignoreBetween = {true, kWork};
              },
              "ignore changes for 2 days after last capture and between 09:00 and 17:00"},
    ChangeRow{"is_ignored_between_too",
              CaptureOption::IgnoreChanges,
              [](Changes& c) {
                  c.ignoreBetween = {true, kWork};
              },
              "ignore changes for 23 hours after last capture and between 09:00 and 17:00"},
    ChangeRow{"is_ignored_and_asked_to_be",
              CaptureOption::IgnoreChanges,
              [](Changes& c) {
                  c.option = CaptureOption::IgnoreChanges;
                  c.ignoreBetween = {true, kWork};
              },
              "ignore changes for 23 hours after last capture and between 09:00 and 17:00"},
    ChangeRow{"is_ignored_by_nothing",
              CaptureOption::IgnoreChanges,
              [](Changes& c) {
                  c.ignoreFor = {true, {}};
              },
              nullptr},
    ChangeRow{"for_goes_with_ignore",
              CaptureOption::Exclude,
              [](Changes& c) {
                  c.ignoreFor = {true, Duration{}};
              },
              nullptr},
    ChangeRow{"between_goes_with_ignore",
              CaptureOption::Normal,
              [](Changes& c) {
                  c.ignoreBetween = {true, kWork};
              },
              nullptr},
    ChangeRow{"scrape",
              CaptureOption::Normal,
              [](Changes& c) { c.option = CaptureOption::Scrape; },
              "scrape 31 days after being captured"},
    ChangeRow{"scrape_contents_after",
              CaptureOption::Normal,
              [](Changes& c) {
                  c.option = CaptureOption::ScrapeContents;
                  c.scrapeAfter = {true, Duration{2, DurationScale::Weeks}};
              },
              "scrape contents 2 weeks after being captured"},
    ChangeRow{"scrape_immediately",
              CaptureOption::Scrape,
              [](Changes& c) {
                  c.scrapeAfter = {true, {}};
              },
              "scrape"},
    ChangeRow{"after_goes_with_scrape",
              CaptureOption::IgnoreChanges,
              [](Changes& c) {
                  c.scrapeAfter = {true, {}};
              },
              nullptr},
    ChangeRow{"back_to_normal", CaptureOption::Exclude, [](Changes& c) { c.option = CaptureOption::Normal; }, "normal"},
};

class PreferencesChangesApplied : public ::testing::TestWithParam<ChangeRow>
{
};

TEST_P(PreferencesChangesApplied, DoWhatWasNamedAndNothingElse)
{
    Preferences preferences = with(GetParam().before);
    Changes changes;
    GetParam().name(changes);
    const QString refusal = changes.applyTo(preferences);

    EXPECT_EQ(refusal.isNull(), GetParam().after != nullptr) << refusal.toStdString();
    if (GetParam().after != nullptr) {
        EXPECT_EQ(preferences.localizedDescription().toStdString(), GetParam().after);
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, PreferencesChangesApplied, ::testing::ValuesIn(kChanges), [](const auto& each) {
    return std::string(each.param.label);
});

TEST(PreferencesChanges, KeepTheDurationWhenTheTimesOfDayGo)
{
    Preferences preferences = with(CaptureOption::IgnoreChanges);
    preferences.ignoreBetween = true;
    Changes changes;
    changes.ignoreBetween = {true, {}};

    EXPECT_TRUE(changes.applyTo(preferences).isNull());
    EXPECT_EQ(preferences.localizedDescription(), QStringLiteral("ignore changes for 23 hours after last capture"));
}

TEST(PreferencesChanges, ReplaceAddAndRemovePatternsInThisOrder)
{
    Preferences preferences{QVariantMap{{QStringLiteral("patterns"), QVariantList{QStringLiteral("//old")}}}};
    Changes changes;
    changes.addedPatterns = QStringList{QStringLiteral("//b"), QStringLiteral("//old")};
    ASSERT_TRUE(changes.applyTo(preferences).isNull());
    EXPECT_EQ(preferences.excludeFiltersAsStrings(), (QStringList{QStringLiteral("//old"), QStringLiteral("//b")}));

    changes.patterns = QStringList{QStringLiteral("//a"), QStringLiteral("//a")};
    changes.removedPatterns = QStringList{QStringLiteral("//b"), QStringLiteral("//missing")};
    ASSERT_TRUE(changes.applyTo(preferences).isNull());
    EXPECT_EQ(preferences.excludeFiltersAsStrings(), (QStringList{QStringLiteral("//a"), QStringLiteral("//old")}));
}

TEST(PreferencesChanges, KnowWhatContradictsItselfWhateverTheItem)
{
    Changes changes;
    EXPECT_TRUE(changes.isEmpty());
    changes.ignoreFor = {true, Duration{}};
    EXPECT_FALSE(changes.isEmpty());
    EXPECT_TRUE(changes.contradiction().isNull()) << "it depends on the item";
    changes.option = CaptureOption::Exclude;
    EXPECT_FALSE(changes.contradiction().isNull());
    changes.option = CaptureOption::IgnoreChanges;
    EXPECT_TRUE(changes.contradiction().isNull());
}

} // namespace
} // namespace havrel::cli
