// SPDX-License-Identifier: MIT
#include "platform/item_changes.h"

#include "platform/attribute_bits.h"
#include "platform/item_calls.h"
#include "platform/item_status.h"
#include "platform/owned_descriptor.h"

#include <array>
#include <cerrno>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

namespace havrel::platform {
namespace {

constexpr std::uint32_t kUnsettable = ATTR_CMN_SCRIPT | ATTR_CMN_CRTIME | ATTR_CMN_CHGTIME;
constexpr std::uint32_t kProtection = kImmutableFlag | kAppendOnlyFlag;
constexpr std::uint32_t kSettableFlags = kCompressedFlag | kImmutableFlag | kAppendOnlyFlag | kNoDumpFlag;

static_assert(kCompressedFlag == FS_COMPR_FL && kImmutableFlag == FS_IMMUTABLE_FL && kAppendOnlyFlag == FS_APPEND_FL &&
              kNoDumpFlag == FS_NODUMP_FL);

int answer(int result)
{
    return result == 0 ? 0 : errno;
}

class StatusWriter
{
public:
    StatusWriter(const QByteArray& path, const ItemStatus& status, std::uint32_t attributes)
        : m_path(path.constData())
        , m_status(status)
        , m_attributes(attributes)
    {
    }

    int run()
    {
        const bool protects = (m_status.fileFlags & kProtection) != 0;
        if (!protects)
            step(ATTR_CMN_FLAGS, &StatusWriter::writeFlags);
        step(ATTR_CMN_OWNERID | ATTR_CMN_GRPID, &StatusWriter::writeOwner);
        step(ATTR_CMN_ACCESSMASK, &StatusWriter::writeMode);
        step(ATTR_CMN_MODTIME, &StatusWriter::writeTime);
        if (protects)
            step(ATTR_CMN_FLAGS, &StatusWriter::writeFlags);
        return m_error;
    }

private:
    void step(std::uint32_t bits, int (StatusWriter::*write)() const)
    {
        if (m_error == 0 && has(bits))
            m_error = (this->*write)();
    }

    [[nodiscard]] bool has(std::uint32_t bits) const { return (m_attributes & bits) != 0; }

    [[nodiscard]] int writeOwner() const
    {
        const uid_t owner = has(ATTR_CMN_OWNERID) ? m_status.ownerID : static_cast<uid_t>(-1);
        const gid_t group = has(ATTR_CMN_GRPID) ? m_status.groupID : static_cast<gid_t>(-1);
        return answer(itemCalls().fchownat(AT_FDCWD, m_path, owner, group, AT_SYMLINK_NOFOLLOW));
    }

    [[nodiscard]] int writeMode() const
    {
        return answer(::fchmodat(AT_FDCWD, m_path, m_status.access, AT_SYMLINK_NOFOLLOW));
    }

    [[nodiscard]] int writeTime() const
    {
        const std::array<timespec, 2> times{timespec{.tv_sec = 0, .tv_nsec = UTIME_OMIT},
                                            m_status.time(ItemTime::Modified)};
        return answer(itemCalls().utimensat(AT_FDCWD, m_path, times.data(), AT_SYMLINK_NOFOLLOW));
    }

    /// Flags that statx does not tell stay as they are; those that only the file system sets must be as they are.
    [[nodiscard]] int writeFlags() const
    {
        struct stat found;
        if (itemCalls().lstat(m_path, &found) != 0)
            return errno;
        if (!S_ISREG(found.st_mode) && !S_ISDIR(found.st_mode)) // opening a device or a pipe has effects
            return ENOTSUP;
        const OwnedDescriptor item(itemCalls().openat(AT_FDCWD, m_path, O_RDONLY | O_NOFOLLOW | O_NONBLOCK, 0));
        unsigned flags = 0;
        if (!item.isOpen())
            return errno;
        if (::ioctl(item.get(), FS_IOC_GETFLAGS, &flags) != 0)
            return errno == ENOTTY ? ENOTSUP : errno;
        if ((m_status.fileFlags & ~kSettableFlags) != (flags & kKnownFileFlags & ~kSettableFlags))
            return ENOTSUP;
        const unsigned wanted = (flags & ~kSettableFlags) | (m_status.fileFlags & kSettableFlags);
        return wanted == flags ? 0 : answer(::ioctl(item.get(), FS_IOC_SETFLAGS, &wanted));
    }

    const char* m_path;
    const ItemStatus& m_status;
    std::uint32_t m_attributes;
    int m_error = 0;
};

} // namespace

int writeStatus(const QByteArray& path, const ItemStatus& status, std::uint32_t attributes)
{
    if (path.contains('\0'))
        return EINVAL;
    if ((attributes & kUnsettable) != 0)
        return ENOTSUP;
    return StatusWriter(path, status, attributes).run();
}

} // namespace havrel::platform
