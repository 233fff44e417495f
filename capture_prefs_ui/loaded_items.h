// SPDX-License-Identifier: MIT
#pragma once

#include "capture_prefs_ui/common_patterns.h"
#include "capture_prefs_ui/shared_preferences.h"

#include <QList>
#include <QUrl>

#include <memory>
#include <optional>
#include <vector>

namespace havrel {

class JNPath;

/// The items of a capture preferences window as they were when they were loaded, and what is edited of them. The lists
/// run parallel.
///
/// Threads: one thread at a time.
struct LoadedItems
{
    QList<QUrl> items; ///< those that may be written, in the order given
    std::vector<std::shared_ptr<JNPath>> paths;
    SharedPreferences prefs;
    std::vector<std::optional<PatternFilterDefs>> originalPatterns; ///< none for an item that is no container
    CommonPatterns commonPatterns;                                  ///< of the containers
    bool allContainers = true;
    bool atLeastOneContainer = false;
    QList<QUrl> refused; ///< those that may not be written, in the order given

    /// Looks at the item and reads its preferences; one without any gets the defaults. Blocks on the disk. An item that
    /// is not there or not local is refused.
    void add(const QUrl& item);

    /// How many of the items are folders.
    [[nodiscard]] qsizetype containers() const;
};

/// The name of an item for people; that of a remote one is the last part of its URL. Looks at the disk.
///
/// Threads: any thread.
[[nodiscard]] QString displayNameOf(const QUrl& item);

} // namespace havrel
