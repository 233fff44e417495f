// SPDX-License-Identifier: MIT
#pragma once

#include "platform/file_systems.h"
#include "platform/volume_attributes.h"

#include <chrono>
#include <vector>

namespace havrel::platform {

/// A mounted volume with everything that it says of itself.
struct MountedVolume
{
    FileSystem fileSystem;
    VolumeAttributes attributes;
    int statisticsError = 0; ///< errno value of the question for statistics; the attributes were not asked for then
    int attributesError = 0; ///< errno value of the question for attributes
};

/// Every volume that can be reached, or why the table of mounts could not be had.
struct MountedVolumes
{
    std::vector<MountedVolume> volumes; ///< in the order of the kernel's table
    int openError = 0;
    int readError = 0;
};

/// How long volumes that may never answer are waited for, all together.
inline constexpr std::chrono::milliseconds kMountPatience{500};

/// Asks all mounted volumes. Those that depend on another host or program, and those mounted below one of them, are
/// asked at the same time on threads of their own; of one that has not answered after \p patience there is only what
/// the table of mounts and its type say (FileSystem::answered is false). Mounts that others cover are left out: nothing
/// leads to them. What would be mounted by asking (autofs) is not asked.
///
/// Threads: any thread.
[[nodiscard]] MountedVolumes askMountedVolumes(std::chrono::milliseconds patience = kMountPatience);

} // namespace havrel::platform
