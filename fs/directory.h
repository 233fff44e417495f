// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/thread_annotations.h"
#include "fs/abstract_directory.h"
#include "fs/entry_list.h"
#include "fs/file_info.h"

#include <sys/types.h>

namespace havrel {

/// What is asked of the kernel for each entry when a folder is read.
enum class EntryDetail {
    Attributes,    ///< one call for each entry, which then has all its attributes
    NamesAndTypes, ///< nothing but the listing itself; attributes are fetched one by one when they are asked for
};

/// How two entries follow each other: greater puts the first after the second.
using EntryComparison = std::function<std::strong_ordering(const JNFileInfo&, const JNFileInfo&)>;

/// What is known of a directory, and its entries once they have been read, in the order of the file system until they
/// are sorted. While it lives it stands for its path, which refers to it without keeping it alive.
///
/// Whatever needs the entries reads them when they have not been read, which blocks on the disk and on every other
/// reading in the process: all share one lock and one buffer. A folder that cannot be opened (no permission, another
/// item by now) looks empty, and the next use tries again; one that cannot be read to its end throws HVException "IO"
/// "failed to read directory", and likewise. An entry that vanishes while it is read is left out. Entries made once
/// stay as they are until flushDirectoryContents().
///
/// Threads: any thread.
class JNDirectory final : public JNFileInfo, public JNAbstractDirectory
{
public:
    using JNFileInfo::JNFileInfo;

    /// The information of a directory, registered as the path's directoryInfo. When the path has one already, the new
    /// object takes a copy of the path, so that each path refers to at most one. Does not look at the disk.
    [[nodiscard]] static std::shared_ptr<JNDirectory> withPathObject(const std::shared_ptr<JNPath>& pathObject);
    /// The same for an entry of a folder. \selector initWithBatchAttr:set:parentPath:
    [[nodiscard]] static std::shared_ptr<JNDirectory> withBatchAttr(const Entry& entry,
                                                                    const std::shared_ptr<JNPath>& parentPath);
    /// Null when there is no directory. \selector +directoryWithPath:
    /// \throws HVException "IO" "failed to probe object vtype"
    [[nodiscard]] static std::shared_ptr<JNDirectory> directoryWithPath(const QString& path);

    [[nodiscard]] std::shared_ptr<JNDirectory> asDirectory() override; ///< the receiver. \selector asDirectory
    /// "volume" where one is mounted, else "folder"; "folder" too when that cannot be told.
    /// \selector logTypeDescription
    [[nodiscard]] QString logTypeDescription() const override;
    /// Stands for that path from now on, and no longer for the old one; what was read is forgotten, because entries
    /// lead through the old one. \selector setPathObject:
    void setPathObject(const std::shared_ptr<JNPath>& pathObject) override;

    // ---- volume

    /// Whether a file system is mounted here, by the attributes. \selector isMountPoint
    [[nodiscard]] bool isMountPoint() const;
    /// A folder that people handle as one thing, by its extension. \selector isPackage
    [[nodiscard]] bool isPackage() const;
    /// The volume: the one that was set, while it lives; else that of the living parent unless this is a mount point;
    /// else the path's, found once. \selector volumeInfo
    /// \throws HVException "IO" "problem getting volume statfs", "failed to get attributes"
    [[nodiscard]] std::shared_ptr<JNVolumeInfo> volumeInfo() override HAVREL_EXCLUDES(m_volumeLock);
    /// Tells the volume to use, without keeping it alive: it may own this object. \selector setVolumeInfo:
    void setVolumeInfo(const std::shared_ptr<JNVolumeInfo>& volumeInfo) HAVREL_EXCLUDES(m_volumeLock);
    /// The volume's at a mount point, else the path's. \selector displayName
    [[nodiscard]] QString displayName() const override;
    /// With "/" at its end; at a mount point it begins with the volume. \selector displayPath
    [[nodiscard]] QString displayPath() const override;
    /// Null at a mount point. \selector parentDirectoryInfo
    [[nodiscard]] std::shared_ptr<JNDirectory> parentDirectoryInfo() const override;

    // ---- entries

    /// Reads the entries unless they have been read. \selector lazyDirectoryRead
    void lazyDirectoryRead(EntryDetail detail = EntryDetail::Attributes) HAVREL_EXCLUDES(m_listLock);
    /// Forgets the entries, if they have been read; the next use reads anew. \selector flushDirectoryContents
    void flushDirectoryContents() HAVREL_EXCLUDES(m_listLock);
    /// Forgets the count of names, too. \selector flushAttributes
    void flushAttributes() override HAVREL_EXCLUDES(m_listLock);
    /// The entries that were made; before they are read, the names that the file system lists (counted once, 0 where
    /// the folder cannot be opened). \selector count
    [[nodiscard]] std::uint32_t count() HAVREL_EXCLUDES(m_listLock);

    [[nodiscard]] JNFileInfoPtr firstObject() HAVREL_EXCLUDES(m_listLock); ///< null when empty. \selector firstObject
    [[nodiscard]] JNFileInfoPtr firstContentFile();                        ///< file or link. \selector firstContentFile
    [[nodiscard]] JNFileInfoPtr firstRegularFile();                        ///< \selector firstRegularFile
    [[nodiscard]] std::shared_ptr<JNDirectory> firstDirectory();           ///< \selector firstDirectory
    /// The entries in their order, as a range: for (const JNFileInfoPtr& each : *directory).
    /// \selector countByEnumeratingWithState:objects:count:
    [[nodiscard]] EntryIterator begin() { return EntryIterator(firstObject()); }
    [[nodiscard]] static EntryIterator end() { return {}; }

    /// Sorts by compareNames(), unless that is their order already. \selector sort
    void sort() HAVREL_EXCLUDES(m_listLock);
    /// Sorts; entries that compare equal keep their order. What \p compare throws comes out, and the order stays as it
    /// was. Comparing may use the entries, and this object. \selector resortUsing:
    void resortUsing(const EntryComparison& compare) HAVREL_EXCLUDES(m_listLock);

    /// The first entry with exactly the name; null when there is none. \selector objectMatchingCName:
    [[nodiscard]] JNFileInfoPtr objectMatchingCName(const QByteArray& name);
    [[nodiscard]] JNFileInfoPtr objectMatchingName(const QString& name); ///< \selector objectMatchingName:
    /// The same when it is a directory, else null. \selector subdirectoryMatchingCName:
    [[nodiscard]] std::shared_ptr<JNDirectory> subdirectoryMatchingCName(const QByteArray& name);
    /// \selector subdirectoryMatchingName:
    [[nodiscard]] std::shared_ptr<JNDirectory> subdirectoryMatchingName(const QString& name);
    /// The entry of the name, else a look at the item. \selector infoForCName:
    /// \throws HVException "IO" "failed to probe object vtype"
    [[nodiscard]] JNFileInfoPtr infoForCName(const QByteArray& name);
    [[nodiscard]] JNFileInfoPtr infoForName(const QString& name); ///< \selector infoForName:
    /// The sub path of a name in this directory. \selector pathForCName:
    [[nodiscard]] std::shared_ptr<JNPath> pathForCName(const QByteArray& name) const;
    [[nodiscard]] std::shared_ptr<JNPath> pathForName(const QString& name) const; ///< \selector pathForName:
    /// Whether the path of \p info begins with this one and "/"; so nothing is in "/". \selector containsFile:
    [[nodiscard]] bool containsFile(const JNFileInfo& info) const;

    // ---- making directories

    /// Makes a directory in this one, with the mode as the process's mask leaves it. What was read stays as it is.
    ///
    /// \selector createSubdirectoryWithName:mode:
    /// \throws HVException "IO" "could not create directory" with the new path (detail "mode")
    std::shared_ptr<JNDirectory> createSubdirectoryWithName(const QString& name, mode_t mode);
    /// The same with a name that no item has, "prefix.0123abcd" with ".extension" unless that is null.
    /// \selector createUniqueSubdirectoryWithPrefix:extension:mode:
    std::shared_ptr<JNDirectory>
    createUniqueSubdirectoryWithPrefix(const QString& prefix, const QString& extension, mode_t mode);

    // ---- as an abstract directory

    [[nodiscard]] JNAbstractFilePtr
    abstractObjectMatchingCName(const QByteArray& name) override; ///< \selector abstractObjectMatchingCName:
    [[nodiscard]] JNAbstractFilePtr
    abstractObjectMatchingName(const QString& name) override; ///< \selector abstractObjectMatchingName:
    /// \selector abstractSubdirectoryMatchingCName:
    [[nodiscard]] JNAbstractDirectoryPtr abstractSubdirectoryMatchingCName(const QByteArray& name) override;
    /// \selector abstractSubdirectoryMatchingName:
    [[nodiscard]] JNAbstractDirectoryPtr abstractSubdirectoryMatchingName(const QString& name) override;
    [[nodiscard]] JNAbstractFilePtr firstAbstractObject() override;         ///< \selector firstAbstractObject
    [[nodiscard]] JNAbstractFilePtr firstAbstractContentFile() override;    ///< \selector firstAbstractContentFile
    [[nodiscard]] JNAbstractFilePtr firstAbstractRegularFile() override;    ///< \selector firstAbstractRegularFile
    [[nodiscard]] JNAbstractDirectoryPtr firstAbstractDirectory() override; ///< \selector firstAbstractDirectory

private:
    /// The entries as they were at some moment, which state of the list that was, and whether they are by name now.
    struct Snapshot
    {
        std::vector<JNFileInfoPtr> entries;
        std::uint64_t generation = 0;
        bool isSorted = false;
    };

    void standFor(const std::shared_ptr<JNPath>& pathObject);
    [[nodiscard]] std::shared_ptr<JNVolumeInfo> volume() const HAVREL_EXCLUDES(m_volumeLock);
    [[nodiscard]] bool isRead() const HAVREL_EXCLUDES(m_listLock);
    [[nodiscard]] bool isSorted() const HAVREL_EXCLUDES(m_listLock);
    [[nodiscard]] Snapshot snapshot() HAVREL_EXCLUDES(m_listLock);
    [[nodiscard]] bool relink(const Snapshot& sorted) HAVREL_EXCLUDES(m_listLock);

    mutable RecursiveMutex m_volumeLock; // a volume asks its root directory, which asks the volume
    mutable std::shared_ptr<JNVolumeInfo> m_volumeInfo HAVREL_GUARDED_BY(m_volumeLock);
    mutable std::weak_ptr<JNVolumeInfo> m_circularVolInfo HAVREL_GUARDED_BY(m_volumeLock);

    mutable UnfairLock m_listLock; // taken after the process-wide lock of readings; of entries, only inside it
    EntryList m_list HAVREL_GUARDED_BY(m_listLock);
    std::optional<std::uint32_t> m_countedNames HAVREL_GUARDED_BY(m_listLock);
    std::uint64_t m_generation HAVREL_GUARDED_BY(m_listLock) = 0; // changes with every change of the list
    bool m_isRead HAVREL_GUARDED_BY(m_listLock) = false;
    bool m_isSorted HAVREL_GUARDED_BY(m_listLock) = false;
};

} // namespace havrel
