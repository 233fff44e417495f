// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/capture_preferences_view_state.h"

#include <gtest/gtest.h>

namespace havrel::tests {
namespace {

using enum ButtonState;

FileCapturePreferences withOption(CaptureOption option)
{
    FileCapturePreferences preferences;
    preferences.option = option;
    return preferences;
}

FileCapturePreferences ignoring(qint64 duration, DurationScale scale = DurationScale::Hours)
{
    FileCapturePreferences preferences = withOption(CaptureOption::IgnoreChanges);
    preferences.ignoreDuration = duration;
    preferences.ignoreScale = scale;
    return preferences;
}

FileCapturePreferences scraping(qint64 duration, bool immediately = false)
{
    FileCapturePreferences preferences = withOption(CaptureOption::Scrape);
    preferences.scrapeDuration = duration;
    preferences.scrapeImmediately = immediately;
    return preferences;
}

FileCapturePreferences excluding(bool allArchives)
{
    FileCapturePreferences preferences = withOption(CaptureOption::Exclude);
    preferences.allArchives = allArchives;
    return preferences;
}

SharedPreferences of(std::initializer_list<FileCapturePreferences> all)
{
    SharedPreferences prefs;
    for (const FileCapturePreferences& each : all)
        prefs.append(each);
    return prefs;
}

CapturePreferencesViewState stateOf(std::initializer_list<FileCapturePreferences> all)
{
    SharedPreferences prefs = of(all);
    return viewStateOf(prefs, true);
}

TEST(CapturePreferencesViewState, ShowsEachOptionAsOffOnOrMixed)
{
    const auto one = stateOf({withOption(CaptureOption::Scrape)});
    EXPECT_EQ(one.options, (std::array{Off, Off, Off, Off, On, Off}));
    const auto two = stateOf({withOption(CaptureOption::Normal), withOption(CaptureOption::ScrapeContents)});
    EXPECT_EQ(two.options, (std::array{Mixed, Off, Off, Off, Off, Mixed}));
}

TEST(CapturePreferencesViewState, ShowsNoOptionForATreatmentThatIsUnknown)
{
    EXPECT_EQ(stateOf({withOption(static_cast<CaptureOption>(6))}).options, (std::array{Off, Off, Off, Off, Off, Off}));
}

TEST(CapturePreferencesViewState, AllowsContentsOnlyOfContainers)
{
    SharedPreferences prefs = of({withOption(CaptureOption::Normal)});
    EXPECT_TRUE(viewStateOf(prefs, true).canTreatContents);
    EXPECT_FALSE(viewStateOf(prefs, false).canTreatContents);
}

TEST(CapturePreferencesViewState, ShowsTheDefaultsOfWhatNoItemUses)
{
    FileCapturePreferences odd;
    odd.ignoreDuration = 5;
    odd.ignoreScale = DurationScale::Years;
    odd.ignoreBetween = true;
    odd.ignoreFromMinute = 1;
    odd.scrapeDuration = 7;
    odd.scrapeImmediately = true;
    odd.allArchives = true;
    const auto state = stateOf({odd});
    EXPECT_FALSE(state.isExcluding);
    EXPECT_EQ(state.allArchives, Off);
    EXPECT_FALSE(state.ignoring.isEnabled);
    EXPECT_EQ(state.ignoring.duration, 23);
    EXPECT_EQ(state.ignoring.scale, DurationScale::Hours);
    EXPECT_EQ(state.ignoreBetween, Off);
    EXPECT_FALSE(state.canSetTimes);
    EXPECT_EQ(state.ignoreFromMinute, 540);
    EXPECT_EQ(state.ignoreToMinute, 1020);
    EXPECT_FALSE(state.isScraping);
    EXPECT_EQ(state.scrapeImmediately, Off);
    EXPECT_EQ(state.scrapeAfter, On);
    EXPECT_FALSE(state.scraping.isEnabled);
    EXPECT_EQ(state.scraping.duration, 31);
    EXPECT_EQ(state.scraping.scale, DurationScale::Days);
}

TEST(CapturePreferencesViewState, ShowsWhetherItemsAreExcludedFromAllCaptures)
{
    EXPECT_EQ(stateOf({excluding(true)}).allArchives, On);
    EXPECT_EQ(stateOf({excluding(false)}).allArchives, Off);
    EXPECT_EQ(stateOf({excluding(true), excluding(true)}).allArchives, On);
    EXPECT_EQ(stateOf({excluding(true), excluding(false)}).allArchives, Mixed);
    EXPECT_TRUE(stateOf({excluding(false), {}}).isExcluding);
    EXPECT_TRUE(stateOf({withOption(CaptureOption::ExcludeContents)}).isExcluding);
}

// Equal values count as different where the last of all items, which does not even use them, has another.
TEST(CapturePreferencesViewState, ComparesWithTheLastOfAllItems)
{
    EXPECT_EQ(stateOf({ignoring(5), ignoring(5)}).ignoring.duration, 5);
    EXPECT_EQ(stateOf({ignoring(5), ignoring(5), {}}).ignoring.duration, std::nullopt);
    EXPECT_EQ(stateOf({{}, ignoring(5), ignoring(5)}).ignoring.duration, 5);
    EXPECT_EQ(stateOf({ignoring(23), ignoring(23), {}}).ignoring.duration, 23);
    EXPECT_EQ(stateOf({ignoring(5), {}}).ignoring.duration, 5) << "one item agrees with itself";

    EXPECT_EQ(stateOf({excluding(true), excluding(true), {}}).allArchives, Mixed);
    EXPECT_EQ(stateOf({excluding(true), {}}).allArchives, On);
    EXPECT_EQ(stateOf({scraping(31, true), scraping(31, true), {}}).scrapeImmediately, Mixed);

    FileCapturePreferences between = ignoring(23);
    between.ignoreBetween = true;
    EXPECT_EQ(stateOf({between, between}).ignoreBetween, On);
    EXPECT_EQ(stateOf({between, between, {}}).ignoreBetween, Mixed);
}

TEST(CapturePreferencesViewState, ShowsADurationOnlyWhenTheUnitsAgreeToo)
{
    const auto state = stateOf({ignoring(5, DurationScale::Days), ignoring(5, DurationScale::Weeks)});
    EXPECT_EQ(state.ignoring.duration, std::nullopt);
    EXPECT_EQ(state.ignoring.scale, DurationScale::Weeks) << "the last item's";
    EXPECT_TRUE(state.ignoring.isEnabled);
}

TEST(CapturePreferencesViewState, ShowsTheTimesOfTheLastItem)
{
    FileCapturePreferences first = ignoring(23);
    first.ignoreBetween = true;
    first.ignoreFromMinute = 60;
    FileCapturePreferences last = ignoring(23);
    last.ignoreFromMinute = 90;
    last.ignoreToMinute = 1440 + 30; // stored by somebody else
    const auto state = stateOf({first, last, {}});
    EXPECT_EQ(state.ignoreBetween, Mixed);
    EXPECT_TRUE(state.canSetTimes);
    EXPECT_EQ(state.ignoreFromMinute, 90);
    EXPECT_EQ(state.ignoreToMinute, 30);
}

TEST(CapturePreferencesViewState, OffersADelayOnlyWhenScrapingIsNotImmediate)
{
    const auto later = stateOf({scraping(7)});
    EXPECT_TRUE(later.isScraping);
    EXPECT_EQ(later.scrapeAfter, On);
    EXPECT_TRUE(later.scraping.isEnabled);
    EXPECT_EQ(later.scraping.duration, 7);

    const auto atOnce = stateOf({scraping(7, true)});
    EXPECT_TRUE(atOnce.isScraping);
    EXPECT_EQ(atOnce.scrapeImmediately, On);
    EXPECT_EQ(atOnce.scrapeAfter, Off);
    EXPECT_FALSE(atOnce.scraping.isEnabled);
    EXPECT_EQ(atOnce.scraping.duration, 31);
    EXPECT_EQ(atOnce.scraping.scale, DurationScale::Days);

    const auto mixed = stateOf({scraping(7, true), scraping(7)});
    EXPECT_EQ(mixed.scrapeImmediately, Mixed);
    EXPECT_EQ(mixed.scrapeAfter, Mixed);
    EXPECT_TRUE(mixed.scraping.isEnabled);
    EXPECT_EQ(mixed.scraping.duration, 7);
}

TEST(SharedPreferences, FindsThoseInARangeOfOptions)
{
    SharedPreferences prefs = of({withOption(CaptureOption::Normal),
                                  withOption(CaptureOption::Exclude),
                                  withOption(CaptureOption::ExcludeContents),
                                  withOption(CaptureOption::IgnoreChanges),
                                  withOption(CaptureOption::Scrape),
                                  withOption(static_cast<CaptureOption>(0xFFFFFFFF))});
    EXPECT_EQ(prefs.forOptions(kExcludingOptions), (PreferencesPtrs{&prefs.all()[1], &prefs.all()[2]}));
    EXPECT_EQ(prefs.forOptions(kIgnoringOptions), (PreferencesPtrs{&prefs.all()[3]}));
    EXPECT_EQ(prefs.forOptions(kScrapingOptions), (PreferencesPtrs{&prefs.all()[4]}));
    EXPECT_EQ(prefs.forOptions({CaptureOption::Normal, 6}).size(), 5U);
    EXPECT_TRUE(prefs.forOptions({CaptureOption::Normal, 0}).empty());
}

} // namespace
} // namespace havrel::tests
