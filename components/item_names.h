// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayList>

namespace havrel {

/// \p path as archives know items: absolute, without ".", "..", doubled or last slashes. ".." takes the name before it
/// away, even where that is a link, because the item need not be there any more. A relative path is taken from
/// \p workingFolder.
///
/// Threads: any thread.
[[nodiscard]] QByteArray plainPath(const QByteArray& path, const QByteArray& workingFolder);

/// Whether \p path is \p item or lies below it; both plain.
///
/// Threads: any thread.
[[nodiscard]] bool isAtOrBelow(const QByteArray& path, const QByteArray& item);

/// \p items without those that lie below another one, and without repetitions; their order stays.
///
/// Threads: any thread.
[[nodiscard]] QByteArrayList withoutCovered(const QByteArrayList& items);

} // namespace havrel
