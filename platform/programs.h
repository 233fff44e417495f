// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <chrono>
#include <optional>

namespace havrel::platform {

using SystemTime = std::chrono::system_clock::time_point;

/// Whether this process may execute what is at \p path, links followed. \source access(2), X_OK
///
/// Threads: any thread.
[[nodiscard]] bool isExecutable(const QByteArray& path);

/// The path of the file that a command of the name \p name would run, as the environment's PATH says; empty when there
/// is none. \source POSIX.1-2017, 8.3: PATH
///
/// Threads: any thread.
[[nodiscard]] QByteArray programOfName(const QByteArray& name);

/// When the oldest process of this user began whose program file has the name \p program ("nautilus"); nullopt when
/// there is none. Exact to a hundredth of a second. Reads the whole table of processes.
///
/// \source proc(5): /proc/[pid]/exe, and starttime in /proc/[pid]/stat
///
/// Threads: any thread.
[[nodiscard]] std::optional<SystemTime> beginningOfProgram(const QByteArray& program);

/// When the item at \p path last changed in any way, links followed; nullopt when there is none. \source stat(2),
/// st_ctim
///
/// Threads: any thread.
[[nodiscard]] std::optional<SystemTime> changeOfItem(const QByteArray& path);

} // namespace havrel::platform
