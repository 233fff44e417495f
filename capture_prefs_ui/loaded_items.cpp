// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/loaded_items.h"

#include "filters/capture_preferences_attribute.h"
#include "fs/item_resources.h"
#include "fs/path.h"

#include <algorithm>
#include <cerrno>

namespace havrel {

namespace attribute = capture_preferences_attribute;

void LoadedItems::add(const QUrl& item)
{
    const JNPathPtr path = JNPath::withURL(item);
    const ItemResources resources = path ? itemResources(*path) : ItemResources();
    if (!resources.isWritable) {
        refused.append({item, Refusal::Permission});
        return;
    }
    const platform::AttributeValue value = attribute::valueFrom(path->cPath());
    if (!resources.canCarryAttributes || value.error == ENOTSUP) {
        refused.append({item, Refusal::NoAttributes});
        return;
    }
    std::optional<FileCapturePreferences> preferences = FileCapturePreferences::capturePreferencesOf(value, *path);
    if (!preferences && attribute::stateOf(value.error) != attribute::State::Missing)
        unreadable.push_back(paths.size());
    items.append(item);
    paths.push_back(path);
    seen.push_back(value);
    prefs.append(std::move(preferences).value_or(FileCapturePreferences()));
    addPatternsOf(prefs.all().back(), resources.isContainer());
}

void LoadedItems::addPatternsOf(const FileCapturePreferences& preferences, bool isContainer)
{
    if (isContainer) {
        atLeastOneContainer = true;
        originalPatterns.push_back(preferences.excludeFilterDefs().value_or(PatternFilterDefs()));
        commonPatterns.intersect(*originalPatterns.back());
    } else {
        allContainers = false;
        originalPatterns.push_back(std::nullopt);
    }
}

void LoadedItems::findOwnPatterns()
{
    ownPatterns.assign(paths.size(), {});
    if (!commonPatterns.differ())
        return;
    for (std::size_t i = 0; i < paths.size(); ++i)
        if (originalPatterns[i])
            ownPatterns[i] = havrel::ownPatterns(*originalPatterns[i], commonPatterns.patterns());
}

qsizetype LoadedItems::containers() const
{
    return std::count_if(originalPatterns.begin(), originalPatterns.end(), [](const auto& each) { return !!each; });
}

QString displayNameOf(const QUrl& item)
{
    const JNPathPtr path = JNPath::withURL(item);
    return path ? path->displayName() : item.fileName();
}

} // namespace havrel
