// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/thread_annotations.h"
#include "foundation/timestamp.h"
#include "platform/attribute_bits.h"
#include "platform/file_systems.h"
#include "platform/volume_attributes.h"
#include "platform/volume_bits.h"

#include <QByteArray>
#include <QMetaType>
#include <QString>
#include <QUrl>
#include <QVariant>

#include <cstdint>
#include <ctime>
#include <memory>
#include <optional>
#include <vector>

namespace havrel {

class Decoder;
class Encoder;
class JNDirectory;
class JNPath;
class JNVolumeInfo;
using JNVolumeInfoPtr = std::shared_ptr<JNVolumeInfo>;

/// Whether a volume that is in use is unmounted all the same, where the file system can do that.
enum class Forcibly { No, Yes };

/// What is known of a mounted volume: where and how it is mounted, its sizes, its identity, and what it can do. All of
/// that is taken when the object is made; reloadStats() and reloadSizes() take some of it anew.
///
/// Capabilities are what the type of file system says, and what the kernel told where that does not settle it. One that
/// could not be found out counts as missing, whatever it is.
///
/// Threads: any thread.
class JNVolumeInfo : public std::enable_shared_from_this<JNVolumeInfo>
{
    struct Token
    {
        explicit Token() = default;
    };

public:
    JNVolumeInfo(Token token, platform::FileSystem stat, const platform::VolumeAttributes& attributes);
    JNVolumeInfo(Token token, const JNVolumeInfo& other);

    /// One for each mounted file system that a path leads to, in the order of the kernel's table. Waits half a second
    /// at most for all those that depend on another host or program; of one that does not answer, what does not need it
    /// is known, and the sizes are 0. One that cannot be asked is logged at Debug and left out.
    ///
    /// \selector +allVolumes
    /// \throws HVException "IO" "cannot get count of mounted volumes" when the table cannot be opened, "cannot get
    /// stats
    ///         of mounted volumes" when it cannot be read
    [[nodiscard]] static std::vector<JNVolumeInfoPtr> allVolumes();
    /// Those of allVolumes() that isBrowsable(). \selector +browsableVolumes
    [[nodiscard]] static std::vector<JNVolumeInfoPtr> browsableVolumes();

    /// The volume that \p path leads to; that of its folder when there is no such item. Blocks on the disk.
    ///
    /// \selector initWithPath:
    /// \throws HVException "IO" with the path that failed: "problem getting volume statfs", "problem getting volume
    ///         attributes"
    [[nodiscard]] static JNVolumeInfoPtr withPath(const QByteArray& path);
    /// The volume with these statistics, whose mount point is asked for the rest. Blocks on the disk.
    ///
    /// \selector initWithPath:orStat:
    /// \throws HVException "IO" "problem getting volume attributes" with the mount point
    [[nodiscard]] static JNVolumeInfoPtr withStat(const platform::FileSystem& stat);
    /// The same where the rest is known already; asks nobody.
    [[nodiscard]] static JNVolumeInfoPtr withStat(platform::FileSystem stat,
                                                  const platform::VolumeAttributes& attributes);
    [[nodiscard]] static JNVolumeInfoPtr
    volumeInfoForPathObject(const JNPath& path); ///< \selector +volumeInfoForPathObject:
    [[nodiscard]] static JNVolumeInfoPtr volumeInfoForPath(const QString& path); ///< \selector +volumeInfoForPath:
    /// What is mounted now at the mount point in the archive; null when it holds none. \selector initWithCoder:
    /// \throws HVException as withPath
    [[nodiscard]] static JNVolumeInfoPtr withCoder(Decoder& decoder);

    /// An object with the same fields, found ones included. \selector copyWithZone:
    [[nodiscard]] JNVolumeInfoPtr copy() const;

    /// The mount point, whose name is the volume's: its label, or else the last component. \selector pathObj
    [[nodiscard]] const std::shared_ptr<JNPath>& pathObj() const noexcept { return m_pathObj; }
    [[nodiscard]] QByteArray cName() const;    ///< the volume's name. \selector cName
    [[nodiscard]] QByteArray cPath() const;    ///< the mount point. \selector cPath
    [[nodiscard]] QString name() const;        ///< \selector name
    [[nodiscard]] QString displayName() const; ///< the path's; looks at the disk. \selector displayName
    [[nodiscard]] QString path() const;        ///< \selector path
    [[nodiscard]] QUrl url() const;            ///< \selector url
    [[nodiscard]] QString displayPath() const; ///< displayName() and ":". \selector displayPath
    /// The directory of the mount point, made once, which knows this object as its volume; null when a file is mounted
    /// there, or nothing any more. Blocks on the disk. \selector rootDirectory
    [[nodiscard]] std::shared_ptr<JNDirectory> rootDirectory() HAVREL_EXCLUDES(m_propLock);
    /// \p path as seen from this volume: "" for the mount point, the path below it, or else, when it lies on this
    /// volume under another mount point, the path below that. None when it lies on another volume, or no other volume
    /// is above.
    ///
    /// \selector relativePathOfPath:
    /// \throws HVException "IO" "problem getting volume statfs" when the volume of a path elsewhere cannot be told
    [[nodiscard]] std::optional<QString> relativePathOfPath(const JNPath& path);

    /// The two words of the file-system id, the first one lowest. \selector filesystemID
    [[nodiscard]] std::uint64_t filesystemID() const HAVREL_EXCLUDES(m_propLock);
    /// Takes the statistics anew; a failure is logged at Debug. Blocks on the disk. \selector reloadStats
    void reloadStats() HAVREL_EXCLUDES(m_propLock);
    /// Takes the free and available sizes anew; a failure is logged at Debug. Blocks on the disk. \selector reloadSizes
    void reloadSizes() HAVREL_EXCLUDES(m_propLock);

    [[nodiscard]] std::uint64_t totalBytes() const noexcept { return m_totalBytes; } ///< \selector totalBytes
    [[nodiscard]] std::uint64_t freeBytes() const HAVREL_EXCLUDES(m_propLock);       ///< \selector freeBytes
    /// What ordinary users may use; freeBytes() where that is 0. \selector availableBytes
    [[nodiscard]] std::uint64_t availableBytes() const HAVREL_EXCLUDES(m_propLock);
    [[nodiscard]] std::int64_t blockSize() const HAVREL_EXCLUDES(m_propLock); ///< in bytes. \selector blockSize
    /// In bytes. \selector optimalXferSize
    [[nodiscard]] std::int64_t optimalXferSize() const HAVREL_EXCLUDES(m_propLock);
    /// What was mounted: "/dev/sda1", "host:/share", "tmpfs". \selector cDeviceName
    [[nodiscard]] QByteArray cDeviceName() const HAVREL_EXCLUDES(m_propLock);
    [[nodiscard]] QString deviceName() const HAVREL_EXCLUDES(m_propLock); ///< the same as text. \selector deviceName
    /// "ext4", "fuse.sshfs". \selector cFilesystemType
    [[nodiscard]] QByteArray cFilesystemType() const HAVREL_EXCLUDES(m_propLock);

    /// All zero when the volume has none of 16 bytes. \selector uuid
    [[nodiscard]] const platform::VolumeUUID& uuid() const noexcept { return m_uuid; }
    /// The UUID in upper case; empty when it is all zero. \selector uuidCStr
    [[nodiscard]] QByteArray uuidCStr() const HAVREL_EXCLUDES(m_propLock);
    /// The UUID in upper case, or "FSID-" and the two words of the file-system id. \selector syntheticUUID
    [[nodiscard]] QString syntheticUUID() const HAVREL_EXCLUDES(m_propLock);
    /// The number of the volume's device; for a volume mounted from a device that is named without its folder, the name
    /// of the whole disk that this is a part of. Nil when nothing is known. Blocks on the disk.
    /// \selector wholeDeviceIdentifier
    [[nodiscard]] QVariant wholeDeviceIdentifier() HAVREL_EXCLUDES(m_propLock);
    /// When the volume was made, or rather its root folder; the epoch where that is not kept. \selector createdTimeSpec
    [[nodiscard]] timespec createdTimeSpec() const noexcept { return m_createTimeSpec; }
    [[nodiscard]] Timestamp createdDate() const
    {
        return newCFDateWithBSDTimeSpec(m_createTimeSpec);
    } ///< \selector createdDate

    /// Sizes in bytes, counts of items, and the number of the device, by the documented keys ("NSFileSystemSize",
    /// "NSFileSystemFreeSize", "NSFileSystemNodes", "NSFileSystemFreeNodes", "NSFileSystemNumber"); found once. Nil
    /// when they cannot be had, which is logged at Debug, and the next call tries again. Blocks on the disk.
    ///
    /// \selector nsAttributes
    /// \source NSFileManager, file-system attribute keys
    [[nodiscard]] QVariant nsAttributes() HAVREL_EXCLUDES(m_propLock);

    /// The writable companion of a read-only system volume, in a group of volumes. This system has no such groups:
    /// null. Searched for once. Blocks. \selector dataVolumeInfo
    [[nodiscard]] JNVolumeInfoPtr dataVolumeInfo() HAVREL_EXCLUDES(m_propLock);
    /// The read-only companion of a data volume; likewise. \selector systemVolumeInfo
    [[nodiscard]] JNVolumeInfoPtr systemVolumeInfo() HAVREL_EXCLUDES(m_propLock);
    /// The syntheticUUID() of what dataVolumeInfo() found; none before that was asked for. \selector dataVolumeUUID
    [[nodiscard]] std::optional<QString> dataVolumeUUID() const HAVREL_EXCLUDES(m_propLock);
    /// The mounted volume of the same group that has the role \p sibling, when this one has the role \p primary; else
    /// null. Blocks. \selector volumeWithSiblingRole:forPrimaryRole:
    [[nodiscard]] JNVolumeInfoPtr volumeWithSiblingRole(const QString& sibling, const QString& primary) const;

    /// unmountForcibly(Forcibly::No). \selector unmount
    void unmount() const;
    /// Unmounts the volume, which needs root.
    ///
    /// \selector unmountForcibly:
    /// \throws HVException "IO" "cannot unmount volume" with the path, details "name" and "forcably"
    /// \source umount2(2), MNT_FORCE
    void unmountForcibly(Forcibly forcibly) const;

    [[nodiscard]] bool isWritable() const { return !hasFlag(platform::MNT_RDONLY); } ///< \selector isWritable
    [[nodiscard]] bool isLocal() const { return hasFlag(platform::MNT_LOCAL); }      ///< \selector isLocal
    [[nodiscard]] bool allowsExec() const { return !hasFlag(platform::MNT_NOEXEC); } ///< \selector allowsExec
    [[nodiscard]] bool allowsSUID() const { return !hasFlag(platform::MNT_NOSUID); } ///< \selector allowsSUID
    /// Whether it keeps owners of items. \selector usesOwnership
    [[nodiscard]] bool usesOwnership() const { return !hasFlag(platform::MNT_IGNORE_OWNERSHIP); }
    /// Whether people are to see it. \selector isBrowsable
    [[nodiscard]] bool isBrowsable() const { return !hasFlag(platform::MNT_DONTBROWSE); }

    /// Whether it is known to have the capability: a VOL_CAP_FMT_ bit. \selector hasFormatCapability:
    [[nodiscard]] bool hasFormatCapability(std::uint32_t bit) const noexcept;
    /// A VOL_CAP_INT_ bit. \selector hasInterfaceCapability:
    [[nodiscard]] bool hasInterfaceCapability(std::uint32_t bit) const noexcept;

    [[nodiscard]] bool hasPersistentObjects() const noexcept
    {
        return hasFormatCapability(platform::VOL_CAP_FMT_PERSISTENTOBJECTIDS);
    } ///< \selector hasPersistentObjects
    [[nodiscard]] bool hasSymbolicLinks() const noexcept
    {
        return hasFormatCapability(platform::VOL_CAP_FMT_SYMBOLICLINKS);
    } ///< \selector hasSymbolicLinks
    [[nodiscard]] bool hasHardLinks() const noexcept
    {
        return hasFormatCapability(platform::VOL_CAP_FMT_HARDLINKS);
    } ///< \selector hasHardLinks
    [[nodiscard]] bool hasJournal() const noexcept
    {
        return hasFormatCapability(platform::VOL_CAP_FMT_JOURNAL);
    } ///< \selector hasJournal
    [[nodiscard]] bool hasActiveJournal() const noexcept
    {
        return hasFormatCapability(platform::VOL_CAP_FMT_JOURNAL_ACTIVE);
    } ///< \selector hasActiveJournal
    [[nodiscard]] bool hasUnreliableRootTimes() const noexcept
    {
        return hasFormatCapability(platform::VOL_CAP_FMT_NO_ROOT_TIMES);
    } ///< \selector hasUnreliableRootTimes
    [[nodiscard]] bool hasSparseFiles() const noexcept
    {
        return hasFormatCapability(platform::VOL_CAP_FMT_SPARSE_FILES);
    } ///< \selector hasSparseFiles
    [[nodiscard]] bool hasZeroRuns() const noexcept
    {
        return hasFormatCapability(platform::VOL_CAP_FMT_ZERO_RUNS);
    } ///< \selector hasZeroRuns
    [[nodiscard]] bool isCaseSensitive() const noexcept
    {
        return hasFormatCapability(platform::VOL_CAP_FMT_CASE_SENSITIVE);
    } ///< \selector isCaseSensitive
    [[nodiscard]] bool isCasePreserving() const noexcept
    {
        return hasFormatCapability(platform::VOL_CAP_FMT_CASE_PRESERVING);
    } ///< \selector isCasePreserving
    [[nodiscard]] bool hasFastStatfs() const noexcept
    {
        return hasFormatCapability(platform::VOL_CAP_FMT_FAST_STATFS);
    } ///< \selector hasFastStatfs
    [[nodiscard]] bool has2TBFiles() const noexcept
    {
        return hasFormatCapability(platform::VOL_CAP_FMT_2TB_FILESIZE);
    } ///< \selector has2TBFiles
    [[nodiscard]] bool hasOpenDeny() const noexcept
    {
        return hasFormatCapability(platform::VOL_CAP_FMT_OPENDENYMODES);
    } ///< \selector hasOpenDeny
    [[nodiscard]] bool hasHiddenFiles() const noexcept
    {
        return hasFormatCapability(platform::VOL_CAP_FMT_HIDDEN_FILES);
    } ///< \selector hasHiddenFiles
    [[nodiscard]] bool hasPathFromID() const noexcept
    {
        return hasFormatCapability(platform::VOL_CAP_FMT_PATH_FROM_ID);
    } ///< \selector hasPathFromID
    [[nodiscard]] bool has64BitObjects() const noexcept
    {
        return hasFormatCapability(platform::VOL_CAP_FMT_64BIT_OBJECT_IDS);
    } ///< \selector has64BitObjects
    /// Statistics tell the sizes. \selector hasVolumeSizes
    [[nodiscard]] bool hasVolumeSizes() const noexcept
    {
        return !hasFormatCapability(platform::VOL_CAP_FMT_NO_VOLUME_SIZES);
    }

    [[nodiscard]] bool hasGetAttrList() const noexcept
    {
        return hasInterfaceCapability(platform::VOL_CAP_INT_ATTRLIST);
    } ///< \selector hasGetAttrList
    [[nodiscard]] bool hasGetDirEntriesAttr() const noexcept
    {
        return hasInterfaceCapability(platform::VOL_CAP_INT_READDIRATTR);
    } ///< \selector hasGetDirEntriesAttr
    [[nodiscard]] bool hasExchangeData() const noexcept
    {
        return hasInterfaceCapability(platform::VOL_CAP_INT_EXCHANGEDATA);
    } ///< \selector hasExchangeData
    [[nodiscard]] bool hasPreallocation() const noexcept
    {
        return hasInterfaceCapability(platform::VOL_CAP_INT_ALLOCATE);
    } ///< \selector hasPreallocation
    [[nodiscard]] bool canRename() const noexcept
    {
        return hasInterfaceCapability(platform::VOL_CAP_INT_VOL_RENAME);
    } ///< \selector canRename
    [[nodiscard]] bool hasAdvisoryLocking() const noexcept
    {
        return hasInterfaceCapability(platform::VOL_CAP_INT_ADVLOCK);
    } ///< \selector hasAdvisoryLocking
    [[nodiscard]] bool hasFileLocking() const noexcept
    {
        return hasInterfaceCapability(platform::VOL_CAP_INT_FLOCK);
    } ///< \selector hasFileLocking
    [[nodiscard]] bool hasMandatoryLocking() const noexcept
    {
        return hasInterfaceCapability(platform::VOL_CAP_INT_MANLOCK);
    } ///< \selector hasMandatoryLocking
    [[nodiscard]] bool hasACLs() const noexcept
    {
        return hasInterfaceCapability(platform::VOL_CAP_INT_EXTENDED_SECURITY);
    } ///< \selector hasACLs
    [[nodiscard]] bool hasUserAccess() const noexcept
    {
        return hasInterfaceCapability(platform::VOL_CAP_INT_USERACCESS);
    } ///< \selector hasUserAccess
    [[nodiscard]] bool hasExtendedAttributes() const noexcept
    {
        return hasInterfaceCapability(platform::VOL_CAP_INT_EXTENDED_ATTR);
    } ///< \selector hasExtendedAttributes
    [[nodiscard]] bool hasFileCloning() const noexcept
    {
        return hasInterfaceCapability(platform::VOL_CAP_INT_CLONE);
    } ///< \selector hasFileCloning
    [[nodiscard]] bool hasSnapshots() const noexcept
    {
        return hasInterfaceCapability(platform::VOL_CAP_INT_SNAPSHOT);
    } ///< \selector hasSnapshots
    [[nodiscard]] bool hasSwapping() const noexcept
    {
        return hasInterfaceCapability(platform::VOL_CAP_INT_RENAME_SWAP);
    } ///< \selector hasSwapping
    [[nodiscard]] bool hasExclusiveRenaming() const noexcept
    {
        return hasInterfaceCapability(platform::VOL_CAP_INT_RENAME_EXCL);
    } ///< \selector hasExclusiveRenaming

    /// The length of the longest file, in bytes: 4,294,967,296 without has2TBFiles(); else what the path's
    /// fileSizeBits() allow, 0 when those are unknown. Blocks on the disk. \selector maxFileSize
    [[nodiscard]] std::int64_t maxFileSize() const;

    // Whether every attribute of a mask of ATTR_ bits can be had, and whether the file system itself keeps it.
    [[nodiscard]] bool supportsTheseCommonAttributes(std::uint32_t mask) const noexcept
    {
        return (m_attributes.valid.common & mask) == mask;
    } ///< \selector supportsTheseCommonAttributes:
    [[nodiscard]] bool supportsTheseCommonAttributesNatively(std::uint32_t mask) const noexcept
    {
        return (m_attributes.native.common & mask) == mask;
    } ///< \selector supportsTheseCommonAttributesNatively:
    [[nodiscard]] bool supportsTheseVolumeAttributes(std::uint32_t mask) const noexcept
    {
        return (m_attributes.valid.volume & mask) == mask;
    } ///< \selector supportsTheseVolumeAttributes:
    [[nodiscard]] bool supportsTheseVolumeAttributesNatively(std::uint32_t mask) const noexcept
    {
        return (m_attributes.native.volume & mask) == mask;
    } ///< \selector supportsTheseVolumeAttributesNatively:
    [[nodiscard]] bool supportsTheseDirectoryAttributes(std::uint32_t mask) const noexcept
    {
        return (m_attributes.valid.directory & mask) == mask;
    } ///< \selector supportsTheseDirectoryAttributes:
    [[nodiscard]] bool supportsTheseDirectoryAttributesNatively(std::uint32_t mask) const noexcept
    {
        return (m_attributes.native.directory & mask) == mask;
    } ///< \selector supportsTheseDirectoryAttributesNatively:
    [[nodiscard]] bool supportsTheseFileAttributes(std::uint32_t mask) const noexcept
    {
        return (m_attributes.valid.file & mask) == mask;
    } ///< \selector supportsTheseFileAttributes:
    [[nodiscard]] bool supportsTheseFileAttributesNatively(std::uint32_t mask) const noexcept
    {
        return (m_attributes.native.file & mask) == mask;
    } ///< \selector supportsTheseFileAttributesNatively:

    [[nodiscard]] bool isEqual(const JNVolumeInfo& other) const;        ///< the same file-system id. \selector isEqual:
    [[nodiscard]] std::uint64_t hash() const { return filesystemID(); } ///< \selector hash
    /// "JNVolumeInfo("NAME",PATH)". \selector description
    [[nodiscard]] QString description() const;

    /// The mount point, under "mountpoint" when keyed. \selector encodeWithCoder:
    void encodeWithCoder(Encoder& encoder) const;

private:
    /// Made once; nothing yet, or the volume found, or null for "none".
    using Sibling = std::optional<JNVolumeInfoPtr>;

    [[nodiscard]] platform::FileSystem stat() const HAVREL_EXCLUDES(m_propLock);
    [[nodiscard]] bool hasFlag(std::uint32_t flag) const HAVREL_EXCLUDES(m_propLock);
    [[nodiscard]] JNVolumeInfoPtr sibling(Sibling JNVolumeInfo::*kept, const QString& role, const QString& ownRole)
        HAVREL_EXCLUDES(m_propLock);
    void takeSizes(const platform::FileSystem& stat) HAVREL_REQUIRES(m_propLock);

    std::shared_ptr<JNPath> m_pathObj;
    mutable Mutex m_propLock;
    std::shared_ptr<JNDirectory> m_rootDirectory HAVREL_GUARDED_BY(m_propLock);
    Sibling m_dataVolume HAVREL_GUARDED_BY(m_propLock);
    Sibling m_systemVolume HAVREL_GUARDED_BY(m_propLock);
    platform::FileSystem m_stat HAVREL_GUARDED_BY(m_propLock);
    std::uint64_t m_totalBytes = 0;
    std::uint64_t m_freeBytes HAVREL_GUARDED_BY(m_propLock) = 0;
    std::uint64_t m_availBytes HAVREL_GUARDED_BY(m_propLock) = 0;
    mutable QString m_deviceName HAVREL_GUARDED_BY(m_propLock); // null until asked for
    timespec m_createTimeSpec{};
    QVariant m_nsAttributes HAVREL_GUARDED_BY(m_propLock); // nil until asked for
    platform::VolumeCapabilities m_capabilities;
    platform::SupportedAttributes m_attributes;
    platform::VolumeUUID m_uuid{};
    mutable QByteArray m_uuidStr HAVREL_GUARDED_BY(m_propLock); // null until asked for
};

} // namespace havrel

Q_DECLARE_METATYPE(havrel::JNVolumeInfoPtr)
