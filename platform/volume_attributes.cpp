// SPDX-License-Identifier: MIT
#include "platform/volume_attributes.h"

#include "platform/attribute_bits.h"
#include "platform/device_registry.h"
#include "platform/file_contents.h"
#include "platform/file_system_types.h"
#include "platform/file_systems.h"
#include "platform/item_calls.h"
#include "platform/owned_descriptor.h"
#include "platform/volume_bits.h"
#include "platform/xfs_geometry.h"

#include <cerrno>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace havrel::platform {
namespace {

/// On this system an item's attributes come in one request wherever it lies, everybody can ask for the effective
/// access, and the kernel itself locks files. No call exchanges contents, lists attributes with entries, or denies
/// others to open a file.
constexpr std::uint32_t kEverywhere =
    VOL_CAP_INT_ATTRLIST | VOL_CAP_INT_ADVLOCK | VOL_CAP_INT_FLOCK | VOL_CAP_INT_USERACCESS;
constexpr std::uint32_t kNowhere = VOL_CAP_INT_READDIRATTR | VOL_CAP_INT_EXCHANGEDATA | VOL_CAP_INT_MANLOCK;
constexpr std::uint32_t kInterfaceOfTypes =
    VOL_CAP_INT_ALLOCATE | VOL_CAP_INT_CLONE | VOL_CAP_INT_SNAPSHOT | VOL_CAP_INT_RENAME_SWAP | VOL_CAP_INT_RENAME_EXCL;

constexpr std::uint32_t kNowhereInFormat =
    VOL_CAP_FMT_OPENDENYMODES | VOL_CAP_FMT_HIDDEN_FILES | VOL_CAP_FMT_PATH_FROM_ID;
constexpr std::uint32_t kFormatOfTypes =
    VOL_CAP_FMT_PERSISTENTOBJECTIDS | VOL_CAP_FMT_SYMBOLICLINKS | VOL_CAP_FMT_HARDLINKS | VOL_CAP_FMT_JOURNAL |
    VOL_CAP_FMT_JOURNAL_ACTIVE | VOL_CAP_FMT_NO_ROOT_TIMES | VOL_CAP_FMT_SPARSE_FILES | VOL_CAP_FMT_ZERO_RUNS |
    VOL_CAP_FMT_CASE_SENSITIVE | VOL_CAP_FMT_CASE_PRESERVING | VOL_CAP_FMT_FAST_STATFS | VOL_CAP_FMT_2TB_FILESIZE |
    VOL_CAP_FMT_64BIT_OBJECT_IDS;

constexpr std::uint32_t kMadeUpOfItems = ATTR_CMN_SCRIPT | ATTR_CMN_FULLPATH | ATTR_CMN_RETURNED_ATTRS;
constexpr std::uint32_t kOwnership = ATTR_CMN_OWNERID | ATTR_CMN_GRPID | ATTR_CMN_ACCESSMASK;
constexpr std::uint32_t kOfItems = ATTR_CMN_NAME | ATTR_CMN_DEVID | ATTR_CMN_FSID | ATTR_CMN_OBJTYPE |
                                   ATTR_CMN_MODTIME | ATTR_CMN_CHGTIME | ATTR_CMN_ACCTIME | kOwnership |
                                   ATTR_CMN_FLAGS | ATTR_CMN_USERACCESS | ATTR_CMN_FILEID | kMadeUpOfItems;
constexpr std::uint32_t kOfVolumes = ATTR_VOL_INFO | ATTR_VOL_FSTYPE | ATTR_VOL_IOBLOCKSIZE | ATTR_VOL_MOUNTPOINT |
                                     ATTR_VOL_NAME | ATTR_VOL_MOUNTFLAGS | ATTR_VOL_MOUNTEDDEVICE |
                                     ATTR_VOL_CAPABILITIES | ATTR_VOL_ATTRIBUTES;
constexpr std::uint32_t kSizes = ATTR_VOL_SIZE | ATTR_VOL_SPACEFREE | ATTR_VOL_SPACEAVAIL;
constexpr std::uint32_t kOfDirectories = ATTR_DIR_LINKCOUNT | ATTR_DIR_ENTRYCOUNT | ATTR_DIR_MOUNTSTATUS;
constexpr std::uint32_t kOfFiles =
    ATTR_FILE_LINKCOUNT | ATTR_FILE_TOTALSIZE | ATTR_FILE_ALLOCSIZE | ATTR_FILE_DATALENGTH | ATTR_FILE_DATAALLOCSIZE;

constexpr qsizetype kLongestJournalText = 64;

void settle(CapabilityWord& word, std::uint32_t bits, bool set)
{
    word.valid |= bits;
    word.bits = set ? word.bits | bits : word.bits & ~bits;
}

/// What is known of a volume before it is asked.
VolumeCapabilities capabilitiesByType(const FileSystem& fileSystem, const FileSystemType& type)
{
    VolumeCapabilities known;
    known.format = {type.format, (kFormatOfTypes & ~type.unsettledFormat) | kNowhereInFormat};
    known.interface = {type.interface | kEverywhere,
                       (kInterfaceOfTypes & ~type.unsettledInterface) | kEverywhere | kNowhere};
    if (type.has(kAsksForObjectIds))
        settle(known.format, VOL_CAP_FMT_64BIT_OBJECT_IDS, hasMountOption(fileSystem.superOptions, "inode64"));
    if (hasMountOption(fileSystem.superOptions, "nocase"))
        settle(known.format, VOL_CAP_FMT_CASE_SENSITIVE, false);
    if (hasMountOption(fileSystem.superOptions, "norecovery"))
        settle(known.format, VOL_CAP_FMT_JOURNAL_ACTIVE, false);
    if (fileSystem.answered)
        settle(known.format, VOL_CAP_FMT_NO_VOLUME_SIZES, fileSystem.blocks == 0);
    return known;
}

/// Whether a file system keeps attributes of a kind: the look for one that is not there says so. Nothing where that may
/// not be asked.
std::optional<bool> keepsAttribute(const QByteArray& path, const char* name)
{
    if (::getxattr(path.constData(), name, nullptr, 0) >= 0 || errno == ENODATA)
        return true;
    return errno == ENOTSUP ? std::optional(false) : std::nullopt;
}

void askForAttribute(const QByteArray& path, const char* name, std::uint32_t bit, CapabilityWord& interface)
{
    if (const auto keeps = keepsAttribute(path, name))
        settle(interface, bit, *keeps);
}

/// ext4's driver, which mounts ext2 and ext3 as well, shows who writes its journal.
void askForJournal(const FileSystem& fileSystem, const FileSystemType& type, VolumeCapabilities& known)
{
    const QByteArray device = nameOfBlockDevice(fileSystem.deviceNumber).replace('/', '!');
    const FileContents writer = readFile("/sys/fs/ext4/" + device + "/journal_task", kLongestJournalText);
    const bool isItsDriver = !device.isEmpty() && writer.error == 0;
    if (isItsDriver)
        settle(known.interface, VOL_CAP_INT_RENAME_SWAP, true);
    if (!isItsDriver && qstrcmp(type.name, "ext2") != 0)
        return;
    const bool journaled = isItsDriver && !writer.bytes.startsWith("<none>");
    settle(known.format, VOL_CAP_FMT_JOURNAL, journaled);
    settle(
        known.format, VOL_CAP_FMT_JOURNAL_ACTIVE, journaled && !hasMountOption(fileSystem.superOptions, "norecovery"));
}

void askForCase(int folder, CapabilityWord& format)
{
    int flags = 0;
    if (itemCalls().inodeFlags(folder, &flags) == 0)
        settle(format, VOL_CAP_FMT_CASE_SENSITIVE, (flags & FS_CASEFOLD_FL) == 0);
}

void askXfs(int folder, VolumeCapabilities& known)
{
    if (const auto geometry = xfsGeometry(folder)) {
        settle(known.format, VOL_CAP_FMT_CASE_SENSITIVE, !geometry->ignoresCase);
        settle(known.interface, VOL_CAP_INT_CLONE, geometry->clones);
    }
}

void askForCapabilities(const FileSystem& fileSystem, int folder, VolumeCapabilities& known)
{
    const FileSystemType& type = fileSystemTypeNamed(fileSystem.type);
    askForAttribute(fileSystem.mountPoint, "user.havrel", VOL_CAP_INT_EXTENDED_ATTR, known.interface);
    askForAttribute(fileSystem.mountPoint, "system.posix_acl_access", VOL_CAP_INT_EXTENDED_SECURITY, known.interface);
    if (type.has(kAsksForJournal))
        askForJournal(fileSystem, type, known);
    if (folder >= 0 && type.has(kAsksForCase))
        askForCase(folder, known.format);
    if (folder >= 0 && type.has(kAsksForXfs))
        askXfs(folder, known);
}

bool has(const CapabilityWord& word, std::uint32_t bit)
{
    return (word.bits & word.valid & bit) != 0;
}

AttributeSet validAttributes(const FileSystem& fileSystem, const VolumeAttributes& known)
{
    AttributeSet set{kOfItems, kOfVolumes, kOfDirectories, kOfFiles, 0};
    if (known.created)
        set.common |= ATTR_CMN_CRTIME;
    if (has(known.capabilities.interface, VOL_CAP_INT_EXTENDED_SECURITY))
        set.common |= ATTR_CMN_EXTENDED_SECURITY;
    if (fileSystem.blocks > 0)
        set.volume |= kSizes;
    if (fileSystem.items > 0)
        set.volume |= ATTR_VOL_OBJCOUNT | ATTR_VOL_MAXOBJCOUNT;
    if (known.uuid)
        set.volume |= ATTR_VOL_UUID;
    return set;
}

AttributeSet nativeAttributes(const AttributeSet& valid, const FileSystemType& type, const VolumeAttributes& known)
{
    AttributeSet set = valid;
    set.common &= ~(kMadeUpOfItems | (type.has(kNoOwners) ? kOwnership | ATTR_CMN_USERACCESS : 0) |
                    (type.has(kNoInodes) ? ATTR_CMN_FILEID | ATTR_CMN_CHGTIME : 0));
    set.volume &= ~(ATTR_VOL_CAPABILITIES | ATTR_VOL_ATTRIBUTES | (known.label.isEmpty() ? ATTR_VOL_NAME : 0));
    set.directory &= ATTR_DIR_MOUNTSTATUS; // links are counted as one, and entries by reading them
    if (!has(known.capabilities.format, VOL_CAP_FMT_HARDLINKS))
        set.file &= ~ATTR_FILE_LINKCOUNT;
    return set;
}

SupportedAttributes supportedAttributes(const FileSystem& fileSystem, const VolumeAttributes& known)
{
    const AttributeSet valid = validAttributes(fileSystem, known);
    return {valid, nativeAttributes(valid, fileSystemTypeNamed(fileSystem.type), known)};
}

/// The mount point, open for questions; not open where it may not be read, or is neither a folder nor a file.
OwnedDescriptor openedMountPoint(const FileSystem& fileSystem, const struct statx& status)
{
    if (!S_ISDIR(status.stx_mode) && !S_ISREG(status.stx_mode))
        return OwnedDescriptor();
    return OwnedDescriptor(
        itemCalls().openat(AT_FDCWD, fileSystem.mountPoint.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK, 0));
}

} // namespace

VolumeAttributes attributesByType(const FileSystem& fileSystem)
{
    VolumeAttributes known;
    known.capabilities = capabilitiesByType(fileSystem, fileSystemTypeNamed(fileSystem.type));
    known.supported = supportedAttributes(fileSystem, known);
    return known;
}

int askForAttributes(const FileSystem& fileSystem, VolumeAttributes& attributes)
{
    struct statx status;
    if (itemCalls().statx(AT_FDCWD,
                          fileSystem.mountPoint.constData(),
                          AT_SYMLINK_NOFOLLOW,
                          STATX_TYPE | STATX_MODE | STATX_BTIME,
                          &status) != 0)
        return errno;
    VolumeAttributes known;
    if ((status.stx_mask & STATX_BTIME) != 0)
        known.created = timespec{status.stx_btime.tv_sec, static_cast<long>(status.stx_btime.tv_nsec)};
    const OwnedDescriptor folder = openedMountPoint(fileSystem, status);
    VolumeIdentity identity = identityOfVolume(fileSystem, folder.get());
    known.uuid = identity.uuid;
    known.label = std::move(identity.label);
    known.capabilities = capabilitiesByType(fileSystem, fileSystemTypeNamed(fileSystem.type));
    askForCapabilities(fileSystem, folder.get(), known.capabilities);
    settle(known.capabilities.interface, VOL_CAP_INT_VOL_RENAME, identity.labelCanBeSet);
    known.supported = supportedAttributes(fileSystem, known);
    if ((status.stx_attributes_mask & STATX_ATTR_IMMUTABLE) == 0)
        known.supported.native.common &= ~ATTR_CMN_FLAGS;
    attributes = std::move(known);
    return 0;
}

} // namespace havrel::platform
