// SPDX-License-Identifier: MIT
#pragma once

namespace havrel::platform {

enum class StandardStream { Output = 1, Error = 2 };

/// Whether a person looks at the stream.
///
/// \source isatty(3)
///
/// Threads: any thread.
[[nodiscard]] bool isTerminal(StandardStream stream) noexcept;

/// The width of the stream's terminal in columns; 80 where it does not say.
///
/// \source ioctl_tty(2), TIOCGWINSZ
///
/// Threads: any thread.
[[nodiscard]] int terminalColumns(StandardStream stream) noexcept;

} // namespace havrel::platform
