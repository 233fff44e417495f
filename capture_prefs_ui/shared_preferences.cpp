// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/shared_preferences.h"

#include <algorithm>

namespace havrel {

qint64 valueOf(const FileCapturePreferences& preferences, PreferenceKey key)
{
    switch (key) {
    case PreferenceKey::AllArchives:
        return preferences.allArchives;
    case PreferenceKey::IgnoreBetween:
        return preferences.ignoreBetween;
    case PreferenceKey::ScrapeImmediately:
        return preferences.scrapeImmediately;
    case PreferenceKey::IgnoreDuration:
        return preferences.ignoreDuration;
    case PreferenceKey::IgnoreScale:
        return static_cast<qint64>(preferences.ignoreScale);
    case PreferenceKey::ScrapeDuration:
        return preferences.scrapeDuration;
    case PreferenceKey::ScrapeScale:
        return static_cast<qint64>(preferences.scrapeScale);
    }
    return 0;
}

PreferencesPtrs SharedPreferences::forOptions(OptionRange range)
{
    const auto first = static_cast<quint32>(range.first);
    PreferencesPtrs within;
    for (FileCapturePreferences& each : m_prefs)
        if (static_cast<quint32>(each.option) - first < static_cast<quint32>(range.length)) // wraps below the range
            within.push_back(&each);
    return within;
}

ButtonState SharedPreferences::stateForOption(CaptureOption option) const
{
    const auto count =
        std::count_if(m_prefs.begin(), m_prefs.end(), [option](const auto& each) { return each.option == option; });
    if (count == 0)
        return ButtonState::Off;
    return static_cast<std::size_t>(count) == m_prefs.size() ? ButtonState::On : ButtonState::Mixed;
}

ButtonState SharedPreferences::stateForKey(PreferenceKey key, const PreferencesPtrs& ofPrefs) const
{
    if (ofPrefs.empty())
        return ButtonState::Off;
    if (!areHomogenous(key, ofPrefs))
        return ButtonState::Mixed;
    return valueOf(*ofPrefs.front(), key) != 0 ? ButtonState::On : ButtonState::Off;
}

bool SharedPreferences::areHomogenous(PreferenceKey key, const PreferencesPtrs& ofPrefs) const
{
    if (ofPrefs.size() < 2)
        return true;
    const qint64 wanted = valueOf(m_prefs.back(), key);
    return std::all_of(
        ofPrefs.begin(), ofPrefs.end(), [wanted, key](const auto* each) { return valueOf(*each, key) == wanted; });
}

} // namespace havrel
