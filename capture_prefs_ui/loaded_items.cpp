// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/loaded_items.h"

#include "fs/item_resources.h"
#include "fs/path.h"

#include <algorithm>

namespace havrel {

void LoadedItems::add(const QUrl& item)
{
    const JNPathPtr path = JNPath::withURL(item);
    const ItemResources resources = path ? itemResources(*path) : ItemResources();
    if (!resources.isWritable) {
        refused.append(item);
        return;
    }
    FileCapturePreferences preferences =
        FileCapturePreferences::capturePreferencesForPath(*path).value_or(FileCapturePreferences());
    if (resources.isContainer()) {
        atLeastOneContainer = true;
        originalPatterns.push_back(preferences.excludeFilterDefs().value_or(PatternFilterDefs()));
        commonPatterns.intersect(*originalPatterns.back());
    } else {
        allContainers = false;
        originalPatterns.push_back(std::nullopt);
    }
    items.append(item);
    paths.push_back(path);
    prefs.append(std::move(preferences));
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
