// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

namespace havrel {

/// The product's folder for this user's data, "Havrel" in $XDG_DATA_HOME; it need not exist.
///
/// Threads: any thread.
[[nodiscard]] QByteArray dataFolder();

} // namespace havrel
