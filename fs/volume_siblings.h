// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace havrel::platform {
class DeviceRegistry;
} // namespace havrel::platform

namespace havrel {

/// Which volume of a group is looked for, from where.
struct SiblingSearch
{
    QByteArray device;   ///< name of the device that the volume is mounted from, without its folder
    QString path;        ///< the mount point, for the log
    QString siblingRole; ///< "Data"
    QString primaryRole; ///< that of the volume itself: "System"
};

/// What the sibling of a volume is mounted from, by a registry that knows containers, volumes, their roles and their
/// groups. Only a sibling of another role or group is passed over: the first one that matches decides, and none is
/// answered when it tells neither what it is mounted from nor its device.
///
/// \source the classes "AppleAPFSVolume" (properties "Role", "VolGroupUUID", "VolGroupMntFromName", "BSD Name") and
///         "AppleAPFSContainer" of the registry of devices
///
/// Threads: any thread.
[[nodiscard]] std::optional<QByteArray> mountSourceOfSibling(const platform::DeviceRegistry& registry,
                                                             const SiblingSearch& search);

/// The name of the whole disk that a device is, or is a part of; none when the registry does not know the device, or no
/// whole disk above it.
///
/// Threads: any thread.
[[nodiscard]] std::optional<QString> wholeDiskOfDevice(const platform::DeviceRegistry& registry,
                                                       const QByteArray& device);

} // namespace havrel
