// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace havrel::platform {

/// What an XFS file system says of itself that is used here.
struct XfsGeometry
{
    std::array<std::uint8_t, 16> uuid{};
    bool clones = false;      ///< files can share blocks
    bool ignoresCase = false; ///< of the ASCII letters in names
};

/// Asks the file system of an open item; none when it is not XFS.
///
/// \source ioctl_xfs_fsgeometry(2), XFS_IOC_FSGEOMETRY_V1
///
/// Threads: any thread.
[[nodiscard]] std::optional<XfsGeometry> xfsGeometry(int item);

} // namespace havrel::platform
