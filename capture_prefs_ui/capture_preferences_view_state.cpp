// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/capture_preferences_view_state.h"

namespace havrel {
namespace {

constexpr quint64 kMinutesOfDay = 1440;

ButtonState inverse(ButtonState state)
{
    if (state == ButtonState::Mixed)
        return state;
    return state == ButtonState::On ? ButtonState::Off : ButtonState::On;
}

struct DurationKeys
{
    PreferenceKey duration;
    PreferenceKey scale;
};

DurationState durationOf(const SharedPreferences& prefs, const PreferencesPtrs& ofPrefs, const DurationKeys& keys)
{
    DurationState state{.isEnabled = true, .duration = {}, .scale = {}};
    const FileCapturePreferences& reference = *ofPrefs.back();
    if (prefs.areHomogenous(keys.duration, ofPrefs) && prefs.areHomogenous(keys.scale, ofPrefs))
        state.duration = valueOf(reference, keys.duration);
    state.scale = static_cast<DurationScale>(valueOf(reference, keys.scale));
    return state;
}

int minuteWithinDay(quint64 minute)
{
    return static_cast<int>(minute % kMinutesOfDay);
}

void showIgnoring(CapturePreferencesViewState& state, SharedPreferences& prefs)
{
    const FileCapturePreferences defaults;
    const PreferencesPtrs ignoring = prefs.forOptions(kIgnoringOptions);
    const FileCapturePreferences& reference = ignoring.empty() ? defaults : *ignoring.back();
    state.ignoring = {.isEnabled = false, .duration = defaults.ignoreDuration, .scale = defaults.ignoreScale};
    if (!ignoring.empty())
        state.ignoring = durationOf(prefs, ignoring, {PreferenceKey::IgnoreDuration, PreferenceKey::IgnoreScale});
    state.ignoreBetween = prefs.stateForKey(PreferenceKey::IgnoreBetween, ignoring);
    state.canSetTimes = state.ignoreBetween != ButtonState::Off;
    state.ignoreFromMinute = minuteWithinDay(reference.ignoreFromMinute);
    state.ignoreToMinute = minuteWithinDay(reference.ignoreToMinute);
}

void showScraping(CapturePreferencesViewState& state, SharedPreferences& prefs)
{
    const FileCapturePreferences defaults;
    const PreferencesPtrs scraping = prefs.forOptions(kScrapingOptions);
    state.isScraping = !scraping.empty();
    state.scrapeImmediately = prefs.stateForKey(PreferenceKey::ScrapeImmediately, scraping);
    state.scrapeAfter = inverse(state.scrapeImmediately);
    state.scraping = {.isEnabled = false, .duration = defaults.scrapeDuration, .scale = defaults.scrapeScale};
    if (state.isScraping && state.scrapeImmediately != ButtonState::On)
        state.scraping = durationOf(prefs, scraping, {PreferenceKey::ScrapeDuration, PreferenceKey::ScrapeScale});
}

} // namespace

CapturePreferencesViewState viewStateOf(SharedPreferences& prefs, bool allContainers)
{
    CapturePreferencesViewState state;
    for (std::size_t option = 0; option < kCaptureOptions; ++option)
        state.options[option] = prefs.stateForOption(static_cast<CaptureOption>(option));
    state.canTreatContents = allContainers;
    const PreferencesPtrs excluding = prefs.forOptions(kExcludingOptions);
    state.isExcluding = !excluding.empty();
    state.allArchives = prefs.stateForKey(PreferenceKey::AllArchives, excluding);
    showIgnoring(state, prefs);
    showScraping(state, prefs);
    return state;
}

} // namespace havrel
