// SPDX-License-Identifier: MIT
#pragma once

#include "capture_prefs_ui/shared_preferences.h"

#include <array>
#include <optional>

namespace havrel {

inline constexpr std::size_t kCaptureOptions = 6;

/// A duration with its unit, as one field and one menu.
struct DurationState
{
    bool isEnabled = false;
    std::optional<qint64> duration; ///< none: the field is empty
    DurationScale scale{};
};

/// What the controls of the window show and allow, apart from the controls.
struct CapturePreferencesViewState
{
    std::array<ButtonState, kCaptureOptions> options{}; ///< by the number of the option
    bool canTreatContents = false;                      ///< the two options about contents are enabled

    bool isExcluding = false; ///< allArchives is enabled
    ButtonState allArchives = ButtonState::Off;

    DurationState ignoring; ///< enabled: with everything below
    ButtonState ignoreBetween = ButtonState::Off;
    bool canSetTimes = false;
    int ignoreFromMinute = 0; ///< 0 to 1439
    int ignoreToMinute = 0;

    bool isScraping = false; ///< the two choices are enabled
    ButtonState scrapeImmediately = ButtonState::Off;
    ButtonState scrapeAfter = ButtonState::On;
    DurationState scraping;
};

/// What the preferences of the items say together. Of mixed values the last item that has them stands for all where one
/// must be shown; what no item uses shows the defaults.
///
/// Threads: one thread at a time.
[[nodiscard]] CapturePreferencesViewState viewStateOf(SharedPreferences& prefs, bool allContainers);

} // namespace havrel
