// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

namespace havrel::platform {

/// Copies the contents of an open file into an empty one: shares the blocks where the file system can, else has the
/// kernel copy them, else reads and writes. Holes stay holes. A file that shrinks meanwhile is copied as far as it
/// reaches; one that says it is empty is read to its end all the same, because files made up by the kernel say so.
/// Blocks on the disk.
///
/// \param size the length of \p from in bytes, as its status says.
/// \return 0 or an errno value; \p to then holds part of it.
/// \source ioctl_ficlone(2), copy_file_range(2), lseek(2) with SEEK_DATA and SEEK_HOLE
///
/// Threads: any thread.
[[nodiscard]] int copyContents(int from, int to, off_t size);

} // namespace havrel::platform
