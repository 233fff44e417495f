// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <limits>

namespace havrel::platform {

/// What a file holds, or why that could not be read.
struct FileContents
{
    QByteArray bytes;
    int error = 0; ///< errno value; 0: all was read
};

/// Reads the file at \p path to its end, links followed. Blocks on the disk, on a pipe until its other end is closed.
/// A path that holds a NUL byte names nothing: ENOENT.
///
/// \param longest in bytes; of a file that holds more, somewhat more than that was read: EFBIG.
/// \source open(2), read(2)
///
/// Threads: any thread.
[[nodiscard]] FileContents readFile(const QByteArray& path, qsizetype longest = std::numeric_limits<qsizetype>::max());

} // namespace havrel::platform
