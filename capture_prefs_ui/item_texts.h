// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>

namespace havrel {

class JNPath;
struct Alert;
struct ForeignChanges;
struct LoadedItems;
struct RefusedItem;
struct WrittenItems;

/// What is said and shown of the items of a window.
///
/// Threads: the main thread only.
namespace item_texts {

/// The display name of one item, "5 Items" of several.
[[nodiscard]] QString name(const LoadedItems& loaded);
/// Below it: "in ~/Documents" for one item, "3 folders, 2 files" for several; packages count as files.
[[nodiscard]] QString place(const LoadedItems& loaded);
/// A path with "~" for the user's home folder.
[[nodiscard]] QString withHomeShortened(const QString& path);
/// What stands over the patterns.
[[nodiscard]] QString patternsTitle(const LoadedItems& loaded);

/// What the quiet line has to say of items that are saved, the most urgent alone; empty when there is nothing more.
[[nodiscard]] QString note(const LoadedItems& loaded, const ForeignChanges& foreign, const WrittenItems& written);

/// What was not written in a pass that \p reason stopped at the item at place \p first: that one, and those after it.
/// Only the reason when there is but one item.
[[nodiscard]] QString notWritten(const LoadedItems& loaded, std::size_t first, const QString& reason);

/// That the \p refused items, at least one, may not be edited, and why; by their display names.
[[nodiscard]] Alert permissionAlert(const QList<RefusedItem>& refused);
/// That the item at \p path could not be written, and why.
[[nodiscard]] Alert writeAlert(const JNPath& path, const QString& reason);

} // namespace item_texts
} // namespace havrel
