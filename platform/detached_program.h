// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayList>

namespace havrel::platform {

/// Starts \p program, the path of an executable file, with \p arguments (its own name is put before them) in the folder
/// \p folder (empty: this process's), and lets go of it: it is in a session of its own, outlives this process and
/// leaves nothing to be waited for.
///
/// It gets this process's environment, output and errors, an empty input, no blocked or ignored signals, and no
/// descriptor that is marked close-on-exec. Returns when the program was executed or could not be.
///
/// \return 0 or the errno value of what failed.
///
/// Threads: any thread.
[[nodiscard]] int
launchDetached(const QByteArray& program, const QByteArrayList& arguments, const QByteArray& folder = {});

} // namespace havrel::platform
