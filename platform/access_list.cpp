// SPDX-License-Identifier: MIT
#include "platform/access_list.h"

#include "platform/extended_attributes.h"

#include <QtEndian>

#include <algorithm>
#include <array>

namespace havrel::platform {
namespace {

constexpr const char* kAttribute = "system.posix_acl_access";
constexpr std::uint32_t kVersion = 2;
constexpr qsizetype kHeaderSize = 4;
constexpr qsizetype kEntrySize = 8;
constexpr std::uint16_t kAllPermissions = 7;
constexpr std::uint32_t kNoID = 0xffffffff; // what stands for the id of an entry that is about nobody in particular

constexpr auto kTags = std::to_array(
    {AccessTag::Owner, AccessTag::User, AccessTag::OwningGroup, AccessTag::Group, AccessTag::Mask, AccessTag::Others});

bool hasID(AccessTag tag)
{
    return tag == AccessTag::User || tag == AccessTag::Group;
}

std::optional<AccessEntry> parseEntry(const char* bytes)
{
    AccessEntry entry{.tag = static_cast<AccessTag>(qFromLittleEndian<std::uint16_t>(bytes)),
                      .permissions = qFromLittleEndian<std::uint16_t>(bytes + 2)};
    if (std::find(kTags.begin(), kTags.end(), entry.tag) == kTags.end() || entry.permissions > kAllPermissions)
        return std::nullopt;
    if (hasID(entry.tag))
        entry.id = qFromLittleEndian<std::uint32_t>(bytes + 4);
    return entry;
}

} // namespace

std::optional<AccessList> parseAccessList(QByteArrayView bytes)
{
    if (bytes.size() < kHeaderSize || (bytes.size() - kHeaderSize) % kEntrySize != 0 ||
        qFromLittleEndian<std::uint32_t>(bytes.data()) != kVersion)
        return std::nullopt;
    AccessList list;
    for (qsizetype at = kHeaderSize; at < bytes.size(); at += kEntrySize) {
        const auto entry = parseEntry(bytes.data() + at);
        if (!entry)
            return std::nullopt;
        list.push_back(*entry);
    }
    return list;
}

QByteArray bytesOfAccessList(const AccessList& list)
{
    QByteArray bytes(kHeaderSize + static_cast<qsizetype>(list.size()) * kEntrySize, Qt::Uninitialized);
    char* next = bytes.data();
    qToLittleEndian(kVersion, next);
    next += kHeaderSize;
    for (const AccessEntry& entry : list) {
        qToLittleEndian(static_cast<std::uint16_t>(entry.tag), next);
        qToLittleEndian(entry.permissions, next + 2);
        qToLittleEndian(hasID(entry.tag) ? entry.id : kNoID, next + 4);
        next += kEntrySize;
    }
    return bytes;
}

std::optional<AccessList> accessListOf(const QByteArray& path)
{
    const AttributeValue value = readAttribute(path, kAttribute);
    return value.error == 0 ? parseAccessList(value.bytes) : std::nullopt;
}

} // namespace havrel::platform
