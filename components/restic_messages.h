// SPDX-License-Identifier: MIT
#pragma once

#include "components/capture_engine.h"

#include <QHash>

#include <optional>

// What the engine restic writes, line by line. Whatever the bytes, nothing here raises.
//
// \source restic 0.14, tried; restic's manual, "Scripting", for what later versions add
namespace havrel::restic {

/// A line of the JSON that a capture writes to its output.
struct CaptureMessage
{
    std::optional<EngineProgress> progress;
    std::optional<CaptureSummary> summary; ///< without the problems
};
[[nodiscard]] CaptureMessage captureMessageOf(const QByteArray& line);

/// A line of what a capture writes to its standard error; none when it tells of no single item.
[[nodiscard]] std::optional<EngineProblem> problemOf(const QByteArray& line);

/// The text of a line of standard error, which later versions put into JSON: {"message_type":"exit_error",...}.
[[nodiscard]] QByteArray wordsOf(const QByteArray& line);

/// A capture with what this product keeps in its tags, because the engine would lose it.
struct StoredCapture
{
    CaptureRecord record;
    QByteArray tree;                     ///< of its root
    QHash<QByteArray, QByteArray> links; ///< path to target, where the target is no text
};
/// Tags of a capture: the paths of items, and links among what is captured, that the engine would lose.
[[nodiscard]] QByteArrayList tagsOf(const QByteArrayList& items, const QHash<QByteArray, QByteArray>& links);
/// The output of "snapshots", the oldest first; none when it is no list.
[[nodiscard]] std::optional<QList<StoredCapture>> capturesOf(const QByteArray& json);

/// A line of the JSON that "ls" writes; none for the one about the capture itself. The path lacks the bytes that are
/// not UTF-8, for which it has U+FFFD.
[[nodiscard]] std::optional<CapturedItem> itemOf(const QByteArray& line);

/// An item of a folder, as stored.
struct TreeNode
{
    QByteArray name;
    QByteArray subtree; ///< the name of the tree of a folder; else empty
    QList<std::pair<QByteArray, QByteArray>> attributes;
};
/// The output of "cat blob" for a tree; none when it is no tree.
[[nodiscard]] std::optional<QList<TreeNode>> treeOf(const QByteArray& json);

} // namespace havrel::restic
