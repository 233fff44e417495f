// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

namespace havrel::platform {

/// What the library of block devices reads from the beginning of a device. Empty where it finds nothing.
struct DeviceTags
{
    QByteArray uuid; ///< as the format writes it: "0f3a…-…" with 36 characters, or shorter, "1A2B-3C4D"
    QByteArray label;
};

/// Reads the tags of the file system on a block device, which needs the right to read the device: nothing is found
/// without. Blocks on the device. The library is loaded with the first question, because most volumes tell the kernel
/// who they are, and no program needs it to start.
///
/// \source libblkid(3)
///
/// Threads: any thread.
[[nodiscard]] DeviceTags tagsOfDevice(const QByteArray& device);

} // namespace havrel::platform
