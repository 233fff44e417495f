// SPDX-License-Identifier: MIT
#pragma once

#include <QStringView>

#include <compare>

namespace havrel::platform {

/// The order in which people expect names, the same in every locale: letters without regard to case first, numbers by
/// value ("file 2" before "file 10"), then case ("a" before "A"), then code points, so that only equal texts are equal.
/// Where ICU's data is missing, only the code points count.
///
/// \source ICU's root collation with numeric ordering, canonical normalisation and tertiary strength
///
/// Threads: any thread.
[[nodiscard]] std::strong_ordering collate(QStringView left, QStringView right);

} // namespace havrel::platform
