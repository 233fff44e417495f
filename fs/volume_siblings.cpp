// SPDX-License-Identifier: MIT
#include "fs/volume_siblings.h"

#include "diagnostics/logr.h"
#include "platform/device_registry.h"
#include "platform/file_names.h"

#include <functional>

namespace havrel {
namespace {

using platform::RegistryEntry;
using platform::RegistryEntryPtr;
using Judgement = std::function<bool(const RegistryEntry&)>;

constexpr int kDeepestTree = 64; // levels; more is a tree that contains itself
constexpr qsizetype kLongestMountSource = 1024;

const QString kVolumeClass = QStringLiteral("AppleAPFSVolume");
const QString kContainerClass = QStringLiteral("AppleAPFSContainer");
const QString kMediaClass = QStringLiteral("IOMedia");
const QString kRole = QStringLiteral("Role");
const QString kGroup = QStringLiteral("VolGroupUUID");
const QString kMountSource = QStringLiteral("VolGroupMntFromName");
const QString kDeviceName = QStringLiteral("BSD Name");
const QString kWhole = QStringLiteral("Whole");

/// The first entry that suits, of \p entry itself and everything above it; nearest first along the first parents.
RegistryEntryPtr firstUpwards(const RegistryEntryPtr& entry, const Judgement& suits, int level = 0)
{
    if (suits(*entry))
        return entry;
    if (level == kDeepestTree)
        return nullptr;
    for (const RegistryEntryPtr& parent : entry->parents())
        if (auto found = firstUpwards(parent, suits, level + 1))
            return found;
    return nullptr;
}

RegistryEntryPtr firstOfClass(const RegistryEntryPtr& entry, const QString& className)
{
    return firstUpwards(entry, [&](const RegistryEntry& each) { return each.conformsTo(className); });
}

bool hasRole(const RegistryEntry& volume, const QString& role)
{
    const QVariant roles = volume.property(kRole);
    return (roles.metaType() == QMetaType::fromType<QVariantList>() ||
            roles.metaType() == QMetaType::fromType<QStringList>()) &&
           roles.toList().contains(QVariant(role));
}

std::optional<QByteArray> mountSourceOf(const RegistryEntry& volume)
{
    if (const QVariant source = volume.property(kMountSource); source.isValid()) {
        const QByteArray bytes = platform::bytesOfFileName(source.toString());
        return bytes.size() <= kLongestMountSource ? std::optional(bytes) : std::nullopt;
    }
    const QVariant name = volume.property(kDeviceName);
    return name.isValid() ? std::optional("/dev/" + platform::bytesOfFileName(name.toString())) : std::nullopt;
}

/// The volume that the device is, or that it belongs to; null unless that has the role and is in a group.
RegistryEntryPtr groupedVolume(const platform::DeviceRegistry& registry, const SiblingSearch& search)
{
    const RegistryEntryPtr device = registry.entryOfDevice(search.device);
    const RegistryEntryPtr volume = device ? firstOfClass(device, kVolumeClass) : nullptr;
    return volume && hasRole(*volume, search.primaryRole) && volume->property(kGroup).isValid() ? volume : nullptr;
}

} // namespace

std::optional<QByteArray> mountSourceOfSibling(const platform::DeviceRegistry& registry, const SiblingSearch& search)
{
    const RegistryEntryPtr volume = groupedVolume(registry, search);
    if (!volume)
        return std::nullopt;
    const RegistryEntryPtr container = firstOfClass(volume, kContainerClass);
    if (!container) {
        Logr::log(LogClassification::Debug,
                  QStringLiteral("-[JNVolumeInfo volumeWithSiblingRole:forPrimaryRole:] failed to find APFS container "
                                 "for %1")
                      .arg(search.path));
        return std::nullopt;
    }
    const QVariant group = volume->property(kGroup);
    for (const RegistryEntryPtr& child : container->children())
        if (child->conformsTo(kVolumeClass) && hasRole(*child, search.siblingRole) && child->property(kGroup) == group)
            return mountSourceOf(*child);
    return std::nullopt;
}

std::optional<QString> wholeDiskOfDevice(const platform::DeviceRegistry& registry, const QByteArray& device)
{
    const RegistryEntryPtr entry = registry.entryOfDevice(device);
    const RegistryEntryPtr disk =
        entry ? firstUpwards(entry,
                             [](const RegistryEntry& each) {
                                 return each.conformsTo(kMediaClass) && each.property(kWhole).toBool();
                             })
              : nullptr;
    return disk ? std::optional(disk->property(kDeviceName).toString()) : std::nullopt;
}

} // namespace havrel
