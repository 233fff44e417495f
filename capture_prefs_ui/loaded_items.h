// SPDX-License-Identifier: MIT
#pragma once

#include "capture_prefs_ui/common_patterns.h"
#include "capture_prefs_ui/shared_preferences.h"
#include "platform/extended_attributes.h"

#include <QList>
#include <QUrl>

#include <memory>
#include <optional>
#include <vector>

namespace havrel {

class JNPath;

/// Why an item is left out.
enum class Refusal {
    Permission,   ///< it may not be written, or is not there
    NoAttributes, ///< what it is, or where it is, cannot carry preferences
};

/// An item that is left out.
struct RefusedItem
{
    QUrl url;
    Refusal why;
};

/// The items of a capture preferences window as they were when they were loaded, and what is edited of them. The lists
/// run parallel.
///
/// Threads: one thread at a time.
struct LoadedItems
{
    QList<QUrl> items; ///< those that may be written, in the order given
    std::vector<std::shared_ptr<JNPath>> paths;
    SharedPreferences prefs;
    /// What the attribute of each item held when it was last read or written by the window.
    std::vector<platform::AttributeValue> seen;
    std::vector<std::optional<PatternFilterDefs>> originalPatterns; ///< none for an item that is no container
    CommonPatterns commonPatterns;                                  ///< of the containers
    std::vector<PatternFilterDefs> ownPatterns; ///< of each container, those that are not common; by findOwnPatterns
    bool allContainers = true;
    bool atLeastOneContainer = false;
    std::vector<std::size_t> unreadable; ///< places of those whose attribute is there, but not to be understood
    QList<RefusedItem> refused;          ///< those that cannot be edited, in the order given

    /// Looks at the item and reads its preferences; one without any gets the defaults. Blocks on the disk. An item that
    /// is not there or not local is refused, and so is one that cannot carry preferences: every write would fail.
    void add(const QUrl& item);

    /// Once the last item is added.
    void findOwnPatterns();

    /// How many of the items are folders.
    [[nodiscard]] qsizetype containers() const;

private:
    void addPatternsOf(const FileCapturePreferences& preferences, bool isContainer);
};

/// The name of an item for people; that of a remote one is the last part of its URL. Looks at the disk.
///
/// Threads: any thread.
[[nodiscard]] QString displayNameOf(const QUrl& item);

} // namespace havrel
