// SPDX-License-Identifier: MIT
#pragma once

#include <QStringView>

#include <compare>

namespace havrel {

/// The order of names as a file manager shows them: letters whatever their case, numbers by value ("file 2" before
/// "file 10"); where that leaves two names equal, case decides, then the code points. Only equal names are equal, so a
/// sorted list is the same every time, and it does not depend on the locale.
///
/// \selector finderLikeCompare:
///
/// Threads: any thread.
[[nodiscard]] std::strong_ordering finderLikeCompare(QStringView name, QStringView other);

} // namespace havrel
