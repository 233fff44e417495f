// SPDX-License-Identifier: MIT
#pragma once

#include "platform/volume_identity.h"

#include <QByteArray>

#include <cstdint>
#include <ctime>
#include <optional>

namespace havrel::platform {

struct FileSystem;

/// Bits that are set, and those of which it is known whether they are.
struct CapabilityWord
{
    std::uint32_t bits = 0;
    std::uint32_t valid = 0;
};

/// VOL_CAP_FMT_ and VOL_CAP_INT_ bits (platform/volume_bits.h).
struct VolumeCapabilities
{
    CapabilityWord format;
    CapabilityWord interface;
};

/// ATTR_ bits (platform/attribute_bits.h), a word for each group.
struct AttributeSet
{
    std::uint32_t common = 0;
    std::uint32_t volume = 0;
    std::uint32_t directory = 0;
    std::uint32_t file = 0;
    std::uint32_t fork = 0; ///< there are no forks
};

/// The attributes that can be had of items of a volume.
struct SupportedAttributes
{
    AttributeSet valid;  ///< all of them
    AttributeSet native; ///< those that the file system keeps; the others are made up from what it keeps
};

/// What a volume says of itself beside its statistics.
struct VolumeAttributes
{
    std::optional<timespec> created; ///< when its root folder was made; none where that is not kept
    std::optional<VolumeUUID> uuid;
    QByteArray label; ///< empty when it has none
    VolumeCapabilities capabilities;
    SupportedAttributes supported;
};

/// Asks a volume by its mount point; blocks on the disk. Changes nothing on it.
///
/// What the name of the type settles is taken from there (platform/file_system_types.h). The kernel is asked for the
/// rest: access lists and attributes of users by looking for one, cloning and case by the calls of the file systems
/// that differ, journals by what their driver shows.
///
/// \return 0 or an errno value.
/// \source statx(2), getxattr(2), ioctl_iflags(2), sysfs(5)
///
/// Threads: any thread.
[[nodiscard]] int askForAttributes(const FileSystem& fileSystem, VolumeAttributes& attributes);

/// The same by what its type and the mount options say alone, without asking it.
///
/// Threads: any thread.
[[nodiscard]] VolumeAttributes attributesByType(const FileSystem& fileSystem);

} // namespace havrel::platform
