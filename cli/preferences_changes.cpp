// SPDX-License-Identifier: MIT
#include "cli/preferences_changes.h"

#include "filters/pattern_filter_def.h"

namespace havrel::cli {
namespace {

bool isExcluding(CaptureOption option)
{
    return option == CaptureOption::Exclude || option == CaptureOption::ExcludeContents;
}

bool isScraping(CaptureOption option)
{
    return option == CaptureOption::Scrape || option == CaptureOption::ScrapeContents;
}

} // namespace

bool PreferencesChanges::isEmpty() const
{
    return !nameTreatment() && !namePatterns();
}

bool PreferencesChanges::nameTreatment() const
{
    return option || allArchives || ignoreFor.given || ignoreBetween.given || scrapeAfter.given;
}

bool PreferencesChanges::namePatterns() const
{
    return patterns || !addedPatterns.isEmpty() || !removedPatterns.isEmpty();
}

/// Details that belong to another option than the one that is to hold.
QString PreferencesChanges::refusalFor(CaptureOption held) const
{
    if (allArchives && !isExcluding(held))
        return QStringLiteral("--all-archives goes with --exclude or --exclude-contents");
    if ((ignoreFor.given || ignoreBetween.given) && held != CaptureOption::IgnoreChanges)
        return QStringLiteral("--for and --between go with --ignore");
    if (scrapeAfter.given && !isScraping(held))
        return QStringLiteral("--after and --immediately go with --scrape or --scrape-contents");
    return {};
}

QString PreferencesChanges::contradiction() const
{
    return option ? refusalFor(*option) : QString();
}

QString PreferencesChanges::applyTo(FileCapturePreferences& preferences) const
{
    const CaptureOption before = preferences.option;
    preferences.option = option.value_or(before);
    if (const QString refusal = refusalFor(preferences.option); !refusal.isNull()) {
        preferences.option = before;
        return refusal + QStringLiteral(" (it is \"%1\" now)").arg(preferences.localizedDescription());
    }
    preferences.allArchives = allArchives.value_or(preferences.allArchives);
    applyIgnoring(preferences, before == CaptureOption::IgnoreChanges);
    applyScraping(preferences);
    applyPatterns(preferences);
    // Other programs may have stored that changes are ignored, but not when: who does not ask for it keeps that.
    const bool namesIgnoring = option || ignoreFor.given || ignoreBetween.given;
    const bool ignoresByNothing = namesIgnoring && preferences.option == CaptureOption::IgnoreChanges &&
                                  preferences.ignoreDuration == 0 && !preferences.ignoreBetween;
    return ignoresByNothing ? QStringLiteral("nothing would say when changes are ignored: give --for or --between")
                            : QString();
}

void PreferencesChanges::applyIgnoring(FileCapturePreferences& preferences, bool wasIgnoring) const
{
    // Who begins to ignore changes between two times of day does not ask for the usual 23 hours as well.
    const bool onlyBetween = !wasIgnoring && ignoreBetween.value && !ignoreFor.given;
    if (ignoreFor.given || onlyBetween) {
        const Duration duration = ignoreFor.value.value_or(Duration{0, preferences.ignoreScale});
        preferences.ignoreDuration = duration.count;
        preferences.ignoreScale = duration.scale;
    }
    if (!ignoreBetween.given)
        return;
    preferences.ignoreBetween = ignoreBetween.value.has_value();
    const PartOfDay part =
        ignoreBetween.value.value_or(PartOfDay{preferences.ignoreFromMinute, preferences.ignoreToMinute});
    preferences.ignoreFromMinute = part.fromMinute;
    preferences.ignoreToMinute = part.toMinute;
}

void PreferencesChanges::applyScraping(FileCapturePreferences& preferences) const
{
    if (!scrapeAfter.given)
        return;
    preferences.scrapeImmediately = !scrapeAfter.value.has_value();
    const Duration delay = scrapeAfter.value.value_or(Duration{preferences.scrapeDuration, preferences.scrapeScale});
    preferences.scrapeDuration = delay.count;
    preferences.scrapeScale = delay.scale;
}

void PreferencesChanges::applyPatterns(FileCapturePreferences& preferences) const
{
    QStringList lines = patterns.value_or(preferences.excludeFiltersAsStrings().value_or(QStringList()));
    lines.append(addedPatterns);
    lines.removeDuplicates();
    for (const QString& each : removedPatterns)
        lines.removeAll(each);
    preferences.setExcludeFilterDefs(
        PatternFilterDef::filterDefsFromStrings(lines, PatternFilterDef::itemEnvironment()));
}

} // namespace havrel::cli
