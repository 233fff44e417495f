// SPDX-License-Identifier: MIT
#pragma once

#include "filters/file_capture_preferences.h"

#include <QString>

#include <vector>

namespace havrel {

/// How a button stands for several items.
enum class ButtonState {
    Mixed = -1,
    Off = 0,
    On = 1,
};

/// A range of option values.
struct OptionRange
{
    CaptureOption first;
    int length;
};

inline constexpr OptionRange kExcludingOptions{CaptureOption::Exclude, 2};
inline constexpr OptionRange kIgnoringOptions{CaptureOption::IgnoreChanges, 1};
inline constexpr OptionRange kScrapingOptions{CaptureOption::Scrape, 2};

/// What is compared between items.
enum class PreferenceKey {
    AllArchives,
    IgnoreBetween,
    ScrapeImmediately,
    IgnoreDuration,
    IgnoreScale,
    ScrapeDuration,
    ScrapeScale,
};

using PreferencesPtrs = std::vector<FileCapturePreferences*>;

/// The value under \p key as a number; yes is 1.
///
/// Threads: any thread.
[[nodiscard]] qint64 valueOf(const FileCapturePreferences& preferences, PreferenceKey key);

/// The preferences of all items of a window, in the order of the items, and what they say together.
///
/// Threads: one thread at a time.
class SharedPreferences
{
public:
    void append(FileCapturePreferences preferences) { m_prefs.push_back(std::move(preferences)); }
    [[nodiscard]] std::vector<FileCapturePreferences>& all() noexcept { return m_prefs; }
    [[nodiscard]] const std::vector<FileCapturePreferences>& all() const noexcept { return m_prefs; }

    /// Those whose option lies in the range, in order; valid until the next one is appended.
    [[nodiscard]] PreferencesPtrs forOptions(OptionRange range);
    /// Off when none has the option, On when all have it.
    [[nodiscard]] ButtonState stateForOption(CaptureOption option) const;
    /// Off for none, the common value when all agree, else Mixed; they agree when they are homogenous.
    [[nodiscard]] ButtonState stateForKey(PreferenceKey key, const PreferencesPtrs& ofPrefs) const;
    /// Whether fewer than two are given, or each has the value of the last of all items: not of those given, so that
    /// one item that is treated otherwise makes the others' values count as different.
    [[nodiscard]] bool areHomogenous(PreferenceKey key, const PreferencesPtrs& ofPrefs) const;

private:
    std::vector<FileCapturePreferences> m_prefs;
};

} // namespace havrel
