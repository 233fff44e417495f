// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <sys/types.h>

namespace havrel::platform {

/// The id of the running process.
///
/// Threads: any thread.
[[nodiscard]] pid_t processID();

/// The id of the process that started it.
///
/// Threads: any thread.
[[nodiscard]] pid_t parentProcessID();

/// The name of the running program, without its folder.
///
/// \source program_invocation_short_name(3)
///
/// Threads: any thread.
[[nodiscard]] QString processName();

/// The arguments that the process was started with, the program first; empty when the system does not tell.
///
/// \source proc(5), /proc/self/cmdline
///
/// Threads: any thread.
[[nodiscard]] QStringList processArguments();

/// The folder to which relative paths are relative; an empty one when the system does not tell.
///
/// \source getcwd(3)
///
/// Threads: any thread.
[[nodiscard]] QByteArray workingFolder();

} // namespace havrel::platform
