// SPDX-License-Identifier: MIT
#include "diagnostics/exception.h"
#include "fs/file_info.h"
#include "platform/attribute_bits.h"
#include "platform/item_changes.h"

#include <utility>

namespace havrel {
namespace {

using namespace platform;

constexpr std::uint32_t kSettable = ATTR_CMN_SCRIPT | ATTR_CMN_CRTIME | ATTR_CMN_MODTIME | ATTR_CMN_CHGTIME |
                                    ATTR_CMN_OWNERID | ATTR_CMN_GRPID | ATTR_CMN_ACCESSMASK | ATTR_CMN_FLAGS;
constexpr std::uint16_t kModeBits = 07777;

} // namespace

int JNFileInfo::getCommonAttrs() const
{
    if ((m_flags & HasAttributes) != 0)
        return 0;
    const int error = readStatus(cPath_nonblocking(), m_attrs);
    if (error == 0)
        m_flags |= HasAttributes;
    return error;
}

/// Whether something is still to be asked that comes with the attributes, by a call of its own. Never of what does not
/// exist, which has no attributes.
bool JNFileInfo::lacks(std::uint8_t flag) const
{
    return (m_flags & HasAttributes) != 0 && (m_flags & flag) == 0;
}

void JNFileInfo::requireAttributes(int error) const
{
    if (error != 0)
        HVException::ioErrno(error, QStringLiteral("failed to get attributes")).setFileInfo(*this).raise();
}

ItemStatus JNFileInfo::attrs() const
{
    ItemStatus known;
    int error = 0;
    {
        const MutexLock lock(m_attrLock);
        error = getCommonAttrs();
        known = m_attrs;
    }
    requireAttributes(error);
    return known;
}

void JNFileInfo::flushAttributes()
{
    const MutexLock lock(m_attrLock);
    m_flags = 0;
    m_attrs = {};
    m_acl.reset();
    m_dirty = 0;
    m_script = 0;
}

void JNFileInfo::setModifiedAttributes()
{
    std::uint32_t mask = 0;
    {
        const MutexLock lock(m_attrLock);
        mask = m_dirty;
    }
    if (mask != 0)
        setCommonAttributes(mask);
}

void JNFileInfo::setCommonAttributes(std::uint32_t mask)
{
    const std::uint32_t kept = mask & kSettable;
    int error = 0;
    {
        const MutexLock lock(m_attrLock);
        if ((m_flags & HasAttributes) == 0 || kept == 0)
            return;
        error = writeStatus(cPath_nonblocking(), m_attrs, kept);
        if (error == 0)
            m_dirty &= ~kept;
    }
    if (error != 0) {
        HVException::ioErrno(error, QStringLiteral("unable to set attributes"))
            .setFileInfo(*this)
            .setHexDetail(kept, QStringLiteral("attributeSet"))
            .raise();
    }
}

void JNFileInfo::change(std::uint32_t bit, const std::function<void(ItemStatus&)>& set)
{
    int error = 0;
    {
        const MutexLock lock(m_attrLock);
        error = getCommonAttrs();
        if ((m_flags & HasAttributes) != 0) {
            set(m_attrs);
            m_dirty |= bit;
        }
    }
    requireAttributes(error);
}

void JNFileInfo::changeTime(std::uint32_t bit, ItemTime which, const timespec& time)
{
    const Timestamp normal = newCFDateWithBSDTimeSpec(time);
    change(bit, [&](ItemStatus& attrs) {
        attrs.setTime(which, normal.seconds, static_cast<std::uint32_t>(normal.nanoseconds));
    });
}

std::optional<Timestamp> JNFileInfo::dateOf(ItemTime which) const
{
    return exists() ? std::optional(newCFDateWithBSDTimeSpec(attrs().time(which))) : std::nullopt;
}

std::uint32_t JNFileInfo::script() const
{
    std::uint32_t script = 0;
    int error = 0;
    {
        const MutexLock lock(m_attrLock);
        error = getCommonAttrs();
        script = m_script;
    }
    requireAttributes(error);
    return script;
}

void JNFileInfo::setScript(std::uint32_t script)
{
    change(ATTR_CMN_SCRIPT, [](ItemStatus& /*attrs*/) {});
    const MutexLock lock(m_attrLock);
    if ((m_flags & HasAttributes) != 0)
        m_script = script;
}

timespec JNFileInfo::createdTimeSpec() const
{
    return attrs().time(ItemTime::Created);
}

void JNFileInfo::setCreatedTimeSpec(const timespec& time)
{
    changeTime(ATTR_CMN_CRTIME, ItemTime::Created, time);
}

timespec JNFileInfo::modifiedTimeSpec() const
{
    return attrs().time(ItemTime::Modified);
}

void JNFileInfo::setModifiedTimeSpec(const timespec& time)
{
    changeTime(ATTR_CMN_MODTIME, ItemTime::Modified, time);
}

timespec JNFileInfo::attributeChangedTimeSpec() const
{
    return attrs().time(ItemTime::AttributeChanged);
}

void JNFileInfo::setAttributeChangedTimeSpec(const timespec& time)
{
    changeTime(ATTR_CMN_CHGTIME, ItemTime::AttributeChanged, time);
}

std::optional<Timestamp> JNFileInfo::createdDate() const
{
    return dateOf(ItemTime::Created);
}

std::optional<Timestamp> JNFileInfo::modifiedDate() const
{
    return dateOf(ItemTime::Modified);
}

std::optional<Timestamp> JNFileInfo::attributeChangedDate() const
{
    return dateOf(ItemTime::AttributeChanged);
}

std::uint32_t JNFileInfo::ownerID() const
{
    return attrs().ownerID;
}

void JNFileInfo::setOwnerID(std::uint32_t owner)
{
    change(ATTR_CMN_OWNERID, [owner](ItemStatus& attrs) { attrs.ownerID = owner; });
}

std::uint32_t JNFileInfo::groupID() const
{
    return attrs().groupID;
}

void JNFileInfo::setGroupID(std::uint32_t group)
{
    change(ATTR_CMN_GRPID, [group](ItemStatus& attrs) { attrs.groupID = group; });
}

std::uint32_t JNFileInfo::fileFlags() const
{
    return attrs().fileFlags;
}

void JNFileInfo::setFileFlags(std::uint32_t flags)
{
    change(ATTR_CMN_FLAGS, [flags](ItemStatus& attrs) { attrs.fileFlags = flags; });
}

std::uint16_t JNFileInfo::access() const
{
    return attrs().access;
}

void JNFileInfo::setAccess(std::uint16_t access)
{
    change(ATTR_CMN_ACCESSMASK, [access](ItemStatus& attrs) { attrs.access = access & kModeBits; });
}

std::uint16_t JNFileInfo::effectiveAccess() const
{
    std::uint16_t access = 0;
    int error = 0;
    {
        const MutexLock lock(m_attrLock);
        error = getCommonAttrs();
        if (lacks(HasEffectiveAccess)) {
            m_effectiveAccess = platform::effectiveAccess(cPath_nonblocking());
            m_flags |= HasEffectiveAccess;
        }
        access = m_effectiveAccess;
    }
    requireAttributes(error);
    return access;
}

std::uint64_t JNFileInfo::localIdentifier() const
{
    return attrs().fileID;
}

std::uint64_t JNFileInfo::deviceID() const
{
    return attrs().device;
}

std::uint32_t JNFileInfo::linkCount() const
{
    return 1;
}

bool JNFileInfo::isHardLink() const
{
    return linkCount() >= 2;
}

std::shared_ptr<const AccessList> JNFileInfo::acl() const
{
    std::shared_ptr<const AccessList> list;
    int error = 0;
    {
        const MutexLock lock(m_attrLock);
        error = getCommonAttrs();
        if (lacks(HasAccessList)) {
            if (auto found = accessListOf(cPath_nonblocking()))
                m_acl = std::make_shared<const AccessList>(*std::move(found));
            m_flags |= HasAccessList;
        }
        list = m_acl;
    }
    requireAttributes(error);
    return list;
}

} // namespace havrel
