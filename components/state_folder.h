// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

namespace havrel {

/// The product's folder for what this user's components remember, "Havrel" in $XDG_STATE_HOME; it need not exist.
///
/// \source XDG Base Directory Specification 0.8
///
/// Threads: any thread.
[[nodiscard]] QByteArray stateFolder();

} // namespace havrel
