// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>

#include <cstdint>
#include <memory>
#include <vector>

namespace havrel::platform {

class RegistryEntry;
using RegistryEntryPtr = std::shared_ptr<const RegistryEntry>;

/// A device, or a part of one, in the system's tree of devices.
///
/// Threads: any thread.
class RegistryEntry
{
public:
    RegistryEntry() = default;
    virtual ~RegistryEntry() = default;
    RegistryEntry(const RegistryEntry&) = delete;
    RegistryEntry& operator=(const RegistryEntry&) = delete;
    RegistryEntry(RegistryEntry&&) = delete;
    RegistryEntry& operator=(RegistryEntry&&) = delete;

    /// Whether it is of the class or of one below it: "IOMedia" is a block device or a part of one.
    [[nodiscard]] virtual bool conformsTo(const QString& className) const = 0;
    /// A property; nil when it has none of that name. Of "IOMedia": "BSD Name", a text, and "Whole", a boolean.
    [[nodiscard]] virtual QVariant property(const QString& name) const = 0;
    /// What it is a part of, or made of; the nearest first. May block on the kernel's tree, never on a device.
    [[nodiscard]] virtual std::vector<RegistryEntryPtr> parents() const = 0;
    /// What is a part of it, or made of it.
    [[nodiscard]] virtual std::vector<RegistryEntryPtr> children() const = 0;
};

/// The system's tree of devices. A test puts another one in place by replaceDeviceRegistry.
///
/// Threads: any thread.
class DeviceRegistry
{
public:
    DeviceRegistry() = default;
    virtual ~DeviceRegistry() = default;
    DeviceRegistry(const DeviceRegistry&) = delete;
    DeviceRegistry& operator=(const DeviceRegistry&) = delete;
    DeviceRegistry(DeviceRegistry&&) = delete;
    DeviceRegistry& operator=(DeviceRegistry&&) = delete;

    /// The entry of the device that is called \p name in /dev ("sda1"); null when there is none.
    [[nodiscard]] virtual RegistryEntryPtr entryOfDevice(const QByteArray& name) const = 0;
};

/// The kernel's tree of block devices: disks, their partitions, and what is made of them (volumes, encrypted devices),
/// above each disk the device that it belongs to. It knows no containers and no groups of volumes.
///
/// \source sysfs(5): class/block, "partition", "slaves", "holders", "device"
///
/// Threads: any thread.
class SysfsDeviceRegistry final : public DeviceRegistry
{
public:
    explicit SysfsDeviceRegistry(QByteArray root = "/sys");
    [[nodiscard]] RegistryEntryPtr entryOfDevice(const QByteArray& name) const override;

private:
    QByteArray m_root;
};

/// The registry in use: the kernel's, until a test replaces it.
///
/// Threads: any thread.
[[nodiscard]] const DeviceRegistry& deviceRegistry();

/// Puts \p replacement in place, which must outlive its use; a null pointer brings the kernel's back.
///
/// Threads: one thread at a time, while no other asks the registry.
void replaceDeviceRegistry(const DeviceRegistry* replacement);

/// The name in /dev of a block device, as the kernel knows it ("sda1", "cciss/c0d0"); empty when there is none.
///
/// \source sysfs(5), /sys/dev/block
///
/// Threads: any thread.
[[nodiscard]] QByteArray nameOfBlockDevice(std::uint64_t device);

} // namespace havrel::platform
