// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

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
/// \source open(2), read(2)
///
/// Threads: any thread.
[[nodiscard]] FileContents readFile(const QByteArray& path);

} // namespace havrel::platform
