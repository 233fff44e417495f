// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QHash>

namespace havrel {

/// The links at or below \p items whose targets satisfy \p isWanted: path to target. Reads every folder below, but
/// nothing else; passes over what cannot be read. Blocks on the disk.
///
/// Threads: any thread.
[[nodiscard]] QHash<QByteArray, QByteArray> linksAtOrBelow(const QByteArrayList& items,
                                                           bool (*isWanted)(const QByteArray& target));

} // namespace havrel
