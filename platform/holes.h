// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

namespace havrel::platform {

/// Makes holes of the blocks of a file that hold nothing but zeros, so that they take no room on the disk. What the
/// file reads as, its mode and its times stay. Files below 32 KiB are left alone: they gain nothing. Reads the whole
/// file; for one that nobody else changes meanwhile.
///
/// \return 0, also where the file system has no holes, or an errno value.
/// \source fallocate(2) with FALLOC_FL_PUNCH_HOLE
///
/// Threads: any thread.
[[nodiscard]] int digHoles(const QByteArray& path);

} // namespace havrel::platform
