// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

#include <sys/types.h>

namespace havrel::platform {

/// Threads, for all of these: any thread.
[[nodiscard]] pid_t processID();
[[nodiscard]] pid_t parentProcessID();
[[nodiscard]] uid_t userID();
[[nodiscard]] uid_t effectiveUserID();

/// The arguments that the process was started with, the program first; empty when the system does not tell.
///
/// \source proc_pid_cmdline(5)
[[nodiscard]] QStringList processArguments();

/// The name of the running program, without its folder.
[[nodiscard]] QString processName();

/// Seconds since the system was started, time asleep included.
///
/// \source clock_gettime(2), CLOCK_BOOTTIME
[[nodiscard]] double systemUptime();

/// What the system calls itself and its kernel: "Debian GNU/Linux 12 (bookworm), Linux 6.1.0-30-amd64".
///
/// \source os-release(5), uname(2)
[[nodiscard]] QString operatingSystemText();

/// The processor architecture this program was built for: "x86_64", "arm64".
[[nodiscard]] QString architectureName();

} // namespace havrel::platform
