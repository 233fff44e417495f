// SPDX-License-Identifier: MIT
#pragma once

#include "cli/time_options.h"
#include "filters/file_capture_preferences.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace havrel::cli {

/// A value that is given, taken away, or left alone.
template<class Value>
struct Change
{
    bool given = false;
    std::optional<Value> value; ///< none: taken away
};

/// What is to become different in the preferences of items. What is not named stays.
///
/// Threads: const members any thread, others one at a time.
struct PreferencesChanges
{
    std::optional<CaptureOption> option;
    std::optional<bool> allArchives;
    Change<Duration> ignoreFor;
    Change<PartOfDay> ignoreBetween;
    Change<Duration> scrapeAfter;        ///< none: immediately
    std::optional<QStringList> patterns; ///< instead of those that are there
    QStringList addedPatterns;           ///< unless they are there
    QStringList removedPatterns;         ///< if they are there

    [[nodiscard]] bool isEmpty() const;
    /// Whether the item's treatment is to become another one, or a detail of it.
    [[nodiscard]] bool nameTreatment() const;
    [[nodiscard]] bool namePatterns() const;
    /// Why the changes contradict each other whatever the item; null when they do not.
    [[nodiscard]] QString contradiction() const;
    /// Makes the changes.
    ///
    /// \return null, or why they make no sense for these preferences, which are then to be thrown away
    [[nodiscard]] QString applyTo(FileCapturePreferences& preferences) const;

private:
    [[nodiscard]] QString refusalFor(CaptureOption held) const;
    void applyIgnoring(FileCapturePreferences& preferences, bool wasIgnoring) const;
    void applyScraping(FileCapturePreferences& preferences) const;
    void applyPatterns(FileCapturePreferences& preferences) const;
};

} // namespace havrel::cli
